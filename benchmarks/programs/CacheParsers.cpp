#include "programs/CacheParsers.h"

#include "path_utilities/ToolboxCacheReader.h"
#include "programs/Measurements.h"

#include <libxml/parser.h>
#include <pugixml.hpp>

#include <fstream>
#include <stdexcept>
#include <string_view>

namespace KxBenchmarks {

namespace {

void CountElement(std::string_view name, CacheReading& reading) {
    if (name == "D")
        ++reading.folders;
    else if (name != "Harrowfen")
        ++reading.files;
}

void Demand(bool isRead, const std::string& file) {
    if (!isRead)
        throw std::runtime_error("cannot read " + file);
}

CacheReading ReadRecords(const std::string& file) {
    CacheReading reading;
    reading.milliseconds = MeasureMilliseconds([&] {
        std::ifstream stream(file, std::ios::binary);
        PathManagement::ReadToolboxCache(stream, [&reading](const auto& record) {
            reading.folders += record->GetFolders().size();
            for (const auto& folder : record->GetFolders())
                reading.files += record->GetFiles(folder).size();
        });
    });
    return reading;
}

CacheReading LoadDocument(const std::string& file) {
    struct Counter final : pugi::xml_tree_walker {
        bool for_each(pugi::xml_node& node) override {
            CountElement(node.name(), reading);
            return true;
        }
        CacheReading reading;
    };

    pugi::xml_document document;
    Counter counter;
    counter.reading.milliseconds =
        MeasureMilliseconds([&] { Demand(static_cast<bool>(document.load_file(file.c_str())), file); });
    document.traverse(counter);
    return counter.reading;
}

CacheReading CallBack(const std::string& file) {
    xmlSAXHandler handler{};
    handler.startElement = [](void* reading, const xmlChar* name, const xmlChar**) {
        CountElement(reinterpret_cast<const char*>(name), *static_cast<CacheReading*>(reading));
    };
    CacheReading reading;
    reading.milliseconds =
        MeasureMilliseconds([&] { Demand(xmlSAXUserParseFile(&handler, &reading, file.c_str()) == 0, file); });
    return reading;
}

} // namespace

std::vector<CacheParser> GetCacheParsers() {
    return {{"pugixml", LoadDocument}, {"project", ReadRecords}, {"libxml2 SAX", CallBack}};
}

} // namespace KxBenchmarks
