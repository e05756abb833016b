#include "foundation/diagnostics/LogChannel.h"

#include "foundation/diagnostics/ThreadName.h"

#include <boost/log/attributes/attribute_set.hpp>
#include <boost/log/attributes/attribute_value_impl.hpp>
#include <boost/log/attributes/constant.hpp>
#include <boost/log/attributes/value_extraction.hpp>
#include <boost/log/core.hpp>
#include <boost/log/sinks/basic_sink_backend.hpp>
#include <boost/log/sinks/unlocked_frontend.hpp>
#include <boost/smart_ptr/make_shared_object.hpp>

#include <cstdio>
#include <functional>
#include <map>
#include <memory>
#include <mutex>

namespace Tolvex {

namespace {

namespace logging = boost::log;
namespace attributes = boost::log::attributes;
namespace sinks = boost::log::sinks;

/// The names of a record's attributes. They are ours alone, so that sinks of the host tell our records from others.
struct AttributeNames {
    logging::attribute_name channel{"TolvexChannel"};
    logging::attribute_name severity{"TolvexSeverity"};
    logging::attribute_name message{"Message"};
};

/// Writes "channel [severity] thread: message" to standard error, each record by one call, so that records of several
/// threads (and processes) stay whole.
class StandardErrorBackend : public sinks::basic_sink_backend<sinks::concurrent_feeding> {
public:
    explicit StandardErrorBackend(const AttributeNames& attributeNames) : names(attributeNames) {}

    void consume(const logging::record_view& record) const {
        const auto channel = logging::extract_or_default<std::string>(names.channel, record, std::string());
        const auto severity = logging::extract_or_default<int>(names.severity, record, 0);
        const auto message = logging::extract_or_default<std::string>(names.message, record, std::string());
        const std::string thread = getCurrentThreadName();
        const std::string line = channel + " [" + std::to_string(severity) + "]" +
                                 (thread.empty() ? "" : " " + thread) + ": " + message + '\n';
        std::fwrite(line.data(), 1, line.size(), stderr);
    }

private:
    AttributeNames names;
};

/// Our side of the logging library. It holds the library's core, which would otherwise be gone for those who write
/// while static objects are destroyed.
class Logger {
public:
    Logger() : core(logging::core::get()) {
        using Sink = sinks::unlocked_sink<StandardErrorBackend>;
        const auto sink = boost::make_shared<Sink>(boost::make_shared<StandardErrorBackend>(names));
        sink->set_filter(
            [name = names.channel](const logging::attribute_value_set& values) { return values.count(name) != 0; });
        core->add_sink(sink);
    }

    void Write(const std::string& channel, int severity, std::string_view message) const {
        logging::attribute_set source;
        source.insert(names.channel, attributes::constant<std::string>(channel));
        source.insert(names.severity, attributes::constant<int>(severity));
        logging::record record = core->open_record(source);
        if (!record)
            return;
        record.attribute_values().insert(names.message, attributes::make_attribute_value(std::string(message)));
        core->push_record(std::move(record));
    }

private:
    AttributeNames names;
    logging::core_ptr core;
};

/// The levels of all channels, by name. Nodes of a map stay where they are, so channels keep pointers to them.
class LevelTable {
public:
    std::atomic<int>& Find(std::string_view channel) {
        const std::lock_guard lock(mutex);
        const auto found = levels.find(channel);
        return found != levels.end() ? found->second : levels.try_emplace(std::string(channel), 0).first->second;
    }

private:
    std::mutex mutex;
    std::map<std::string, std::atomic<int>, std::less<>> levels;
};

/// Made on first use and never destroyed: static objects of any module may log in their destructors.
template <class T>
T& GetImmortal() {
    static T* const object = std::make_unique<T>().release();
    return *object;
}

} // namespace

LogChannel::LogChannel(std::string channelName)
    : name(std::move(channelName)), level(&GetImmortal<LevelTable>().Find(name)) {}

LogChannel::~LogChannel() = default;

void LogChannel::Write(int severity, std::string_view message) const {
    if (IsEnabled(severity))
        GetImmortal<Logger>().Write(name, severity, message);
}

void SetLogLevel(std::string_view channel, int level) {
    GetImmortal<LevelTable>().Find(channel).store(level, std::memory_order_relaxed);
}

} // namespace Tolvex
