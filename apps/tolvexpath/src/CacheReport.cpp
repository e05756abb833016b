#include "CacheReport.h"

#include "DisplayText.h"
#include "JsonWriter.h"
#include "Messages.h"
#include "Output.h"

#include <fmt/format.h>

#include <vector>

namespace TolvexPath {

using PathManagement::ToolboxCacheRecord;
using Folder = ToolboxCacheRecord::Folder;

namespace {

/// Counts, and says at the end whether the file is whole.
class Verdict : public CacheReport {
public:
    explicit Verdict(Output& output) : output(output) {}
    void Add(const ToolboxCacheRecord&) override { ++folders; }
    void Finish(const std::string& refusal) override {
        if (refusal.empty())
            output.Write(fmt::format("whole, {} top-level folder{}\n", folders, folders == 1 ? "" : "s"));
        else
            PrintMessage(refusal);
    }

protected:
    Output& output;
    std::size_t folders = 0;
};

class Listing final : public Verdict {
public:
    using Verdict::Verdict;
    void Add(const ToolboxCacheRecord& record) override {
        Verdict::Add(record);
        for (const Folder& folder : record.GetFolders()) {
            output.Write(ToDisplayText(record.GetName(folder)) + "\n");
            for (const ToolboxCacheRecord::File& file : record.GetFiles(folder))
                output.Write(fmt::format("  {} {}\n", file.kind, ToDisplayText(record.GetName(file))));
        }
    }
};

class JsonVerdict : public Verdict {
public:
    using Verdict::Verdict;
    void Finish(const std::string& refusal) override {
        json.BeginObject();
        json.Key("folders");
        json.Number(folders);
        WriteEnd(refusal);
    }

protected:
    void WriteEnd(const std::string& refusal) {
        json.Key("ok");
        json.Boolean(refusal.empty());
        json.Key("message");
        json.String(Tolvex::FromUtf8(refusal));
        json.EndObject();
        output.Write('\n');
    }

    JsonWriter json{output};
};

class JsonListing final : public JsonVerdict {
public:
    explicit JsonListing(Output& output) : JsonVerdict(output) {
        json.BeginObject();
        json.Key("folders");
        json.BeginArray();
    }

    /// Folders come parents first; one is closed when the next is none of those in it. Depth costs no stack.
    void Add(const ToolboxCacheRecord& record) override {
        std::vector<const Folder*> open;
        for (const Folder& folder : record.GetFolders()) {
            while (!open.empty() &&
                   (folder.parent == Folder::none || open.back() != &record.GetFolders()[folder.parent]))
                Close(record, open);
            json.BeginObject();
            json.Key("name");
            json.String(record.GetName(folder));
            json.Key("folders");
            json.BeginArray();
            open.push_back(&folder);
        }
        while (!open.empty())
            Close(record, open);
    }

    void Finish(const std::string& refusal) override {
        json.EndArray();
        WriteEnd(refusal);
    }

private:
    void Close(const ToolboxCacheRecord& record, std::vector<const Folder*>& open) {
        json.EndArray();
        json.Key("files");
        json.BeginArray();
        for (const ToolboxCacheRecord::File& file : record.GetFiles(*open.back())) {
            json.BeginObject();
            json.Key("kind");
            json.String(AsText(file.kind));
            json.Key("name");
            json.String(record.GetName(file));
            json.EndObject();
        }
        json.EndArray();
        json.EndObject();
        open.pop_back();
    }

    static Tolvex::ustring AsText(char letter) { return Tolvex::ustring(1, static_cast<char16_t>(letter)); }
};

} // namespace

std::unique_ptr<CacheReport> CreateCacheReport(Output& output, bool withNames, bool asJson) {
    if (withNames && asJson)
        return std::make_unique<JsonListing>(output);
    if (withNames)
        return std::make_unique<Listing>(output);
    if (asJson)
        return std::make_unique<JsonVerdict>(output);
    return std::make_unique<Verdict>(output);
}

} // namespace TolvexPath
