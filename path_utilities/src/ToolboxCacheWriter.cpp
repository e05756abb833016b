#include "path_utilities/ToolboxCacheWriter.h"

#include <boost/date_time/posix_time/conversion.hpp>
#include <boost/date_time/posix_time/posix_time_types.hpp>

#include <iomanip>
#include <ostream>
#include <sstream>
#include <utility>

namespace PathManagement {

using Tolvex::ToUtf8;

namespace {

std::string FormatLocalTime() {
    const std::tm time = boost::posix_time::to_tm(boost::posix_time::second_clock::local_time());
    std::ostringstream text;
    text.imbue(std::locale::classic());
    text << std::put_time(&time, "%a %b %d %H:%M:%S %Y");
    return text.str();
}

char GetKindLetter(Tolvex::ItemKind kind) noexcept {
    switch (static_cast<unsigned>(kind)) {
    case 0:
        return 'C';
    case 1:
        return 'N';
    default:
        return 'U';
    }
}

/// Where a stream keeps whether names are refused.
int GetRefusalIndex() {
    static const int index = std::ios_base::xalloc();
    return index;
}

} // namespace

std::ostream& refuseNamesThatBreakTheFormat(std::ostream& cacheFile) {
    cacheFile.iword(GetRefusalIndex()) = 1;
    return cacheFile;
}

ToolboxCacheWriter::ToolboxCacheWriter(std::ostream& cacheFile, Tolvex::CanonicalAbsoluteIRI cacheRoot)
    : cacheFile(cacheFile), cacheRoot(std::move(cacheRoot)) {
    text = "<Harrowfen type=\"Path Cache File\" version=\"2.0\" date=\"" + FormatLocalTime() + "\">\n";
}

void ToolboxCacheWriter::Write(const IPathEntry& topLevelFolder) {
    WriteFolder(topLevelFolder, 0);
    Flush();
}

void ToolboxCacheWriter::Close() {
    text += "</Harrowfen>\n";
    Flush();
    DemandSuccess([this] { cacheFile.flush(); }, "It could not be written to its end.");
}

void ToolboxCacheWriter::WriteFolder(const IPathEntry& entry, std::size_t depth) {
    text.append(depth + 1, ' ').append("<D name=\"");
    Append(entry.GetIRI().makePathRelativeTo(cacheRoot).value_or(ustring()), entry);
    text.append("\">\n");
    for (const auto& children : {entry.GetPackageEntries(), entry.GetMethodEntries(), entry.GetUDDClassEntries()})
        for (const auto& child : *children)
            WriteFolder(*child, depth + 1);
    for (const auto& child : {entry.GetPrivateEntry(), entry.GetResourcesEntry()})
        if (child)
            WriteFolder(*child, depth + 1);
    WriteFiles(entry, depth);
    text.append(depth + 1, ' ').append("</D>\n");
}

void ToolboxCacheWriter::WriteFiles(const IPathEntry& entry, std::size_t depth) {
    for (const auto& item : *entry.GetPathItems()) {
        text.append(depth + 2, ' ').append("<").append(1, GetKindLetter(item->GetKind())).append(" name=\"");
        Append(item->GetStem(), entry);
        Append(item->GetExtension(), entry);
        text.append("\"/>\n");
    }
}

void ToolboxCacheWriter::Append(ustring_view name, const IPathEntry& entry) {
    if (name.find(u'"') != ustring_view::npos && cacheFile.iword(GetRefusalIndex()) != 0)
        throw UnableToSaveToolboxCacheException(ToUtf8(cacheRoot.getPath()),
                                                "It cannot hold names with a double quote, as \"" + ToUtf8(name) +
                                                    "\" in folder \"" + ToUtf8(entry.GetIRI().getPath()) +
                                                    "\". Rename the file or take the folder off the path.");
    text += ToUtf8(name);
}

void ToolboxCacheWriter::Flush() {
    const auto write = [this] { cacheFile.write(text.data(), static_cast<std::streamsize>(text.size())); };
    DemandSuccess(write, "It could not be written: the disk may be full.");
    text.clear();
}

/// A stream may be one that throws.
template <class Output>
void ToolboxCacheWriter::DemandSuccess(const Output& output, const char* refusal) {
    try {
        output();
    } catch (const std::ios_base::failure&) {
        throw UnableToSaveToolboxCacheException(ToUtf8(cacheRoot.getPath()), refusal);
    }
    if (!cacheFile)
        throw UnableToSaveToolboxCacheException(ToUtf8(cacheRoot.getPath()), refusal);
}

} // namespace PathManagement
