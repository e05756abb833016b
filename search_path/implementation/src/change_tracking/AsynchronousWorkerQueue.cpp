#include "change_tracking/AsynchronousWorkerQueue.h"

#include "foundation/diagnostics/ThreadName.h"

#include <chrono>

namespace PathManagement {

namespace {

constexpr std::chrono::milliseconds idlePollInterval{10};

} // namespace

AsynchronousWorkerQueue::AsynchronousWorkerQueue() {
    for (std::thread& worker : workers)
        worker = std::thread(&AsynchronousWorkerQueue::RunTasks, this);
}

AsynchronousWorkerQueue::~AsynchronousWorkerQueue() {
    {
        const std::lock_guard lock(mutex);
        stopRequested = true;
    }
    condition.notify_all();
    // Joining from the worker itself throws, which ends the process here: the queue was owned by one of its own tasks.
    for (std::thread& worker : workers)
        worker.join();
}

void AsynchronousWorkerQueue::Enqueue(std::unique_ptr<Task> task) {
    {
        const std::lock_guard lock(mutex);
        tasks.push_back(std::move(task));
    }
    condition.notify_one();
}

void AsynchronousWorkerQueue::WaitUntilIdle() {
    const auto isIdle = [this] {
        const std::lock_guard lock(mutex);
        return idleWorkers == static_cast<std::int32_t>(workers.size()) && tasks.empty();
    };
    while (!isIdle())
        std::this_thread::sleep_for(idlePollInterval);
}

void AsynchronousWorkerQueue::RunTasks() {
    Tolvex::setCurrentThreadName("PathManager async worker");
    std::unique_lock lock(mutex);
    while (true) {
        ++idleWorkers;
        condition.wait(lock, [this] { return stopRequested || !tasks.empty(); });
        --idleWorkers;
        if (tasks.empty())
            return;
        std::unique_ptr<Task> task = std::move(tasks.front());
        tasks.pop_front();
        lock.unlock();
        task->Run();
        task.reset();
        lock.lock();
    }
}

} // namespace PathManagement
