#pragma once

#include <array>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <functional>
#include <future>
#include <memory>
#include <mutex>
#include <thread>
#include <utility>

namespace PathManagement {

/// Runs work off the caller's thread: one background thread, "PathManager async worker", one task at a time, in the
/// order in which they were queued. Its main use is to destroy large things away from whoever dropped them.
///
/// Any thread may queue and wait; tasks run with no lock held, so a task may queue more. The destructor runs every
/// queued task before it returns; it must not be called from a task of this queue (that ends the process), so nothing
/// that is destroyed on the queue may own the queue.
class AsynchronousWorkerQueue {
public:
    /// A piece of work. What Run throws ends the process; TypedTask hands exceptions to its future instead.
    class Task {
    public:
        virtual void Run() = 0;
        virtual ~Task() = default;
    };

    template <class Result>
    class TypedTask final : public Task {
    public:
        explicit TypedTask(std::packaged_task<Result()> work) : work(std::move(work)) {}
        void Run() override { work(); }

    private:
        std::packaged_task<Result()> work;
    };

    AsynchronousWorkerQueue();
    ~AsynchronousWorkerQueue();
    AsynchronousWorkerQueue(const AsynchronousWorkerQueue&) = delete;
    AsynchronousWorkerQueue& operator=(const AsynchronousWorkerQueue&) = delete;

    void Enqueue(std::unique_ptr<Task> task);

    /// Returns when no task is queued or running, having looked every 10 milliseconds. Must not be called from a task.
    void WaitUntilIdle();

private:
    void RunTasks();

    std::condition_variable condition; // signalled when a task is queued and when stop is requested
    std::mutex mutex;                  // guards the next three
    std::deque<std::unique_ptr<Task>> tasks;
    bool stopRequested = false;
    std::int32_t idleWorkers = 0;
    std::array<std::thread, 1> workers;
};

/// Hands `object` to the queue, on whose thread it is destroyed.
template <class T>
void DestroyAsynchronously(std::unique_ptr<T> object, AsynchronousWorkerQueue& queue) {
    std::packaged_task<void()> release([object = std::move(object)]() mutable { object.reset(); });
    queue.Enqueue(std::make_unique<AsynchronousWorkerQueue::TypedTask<void>>(std::move(release)));
}

} // namespace PathManagement
