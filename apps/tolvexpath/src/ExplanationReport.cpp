#include "ExplanationReport.h"

#include "DisplayText.h"
#include "Explanation.h"
#include "Finder.h"
#include "JsonWriter.h"
#include "OffPathSearch.h"
#include "Output.h"
#include "QualifiedName.h"

#include "path_utilities/PathText.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

namespace TolvexPath {

using PathManagement::GetStringFromIRI;
using Tolvex::FromUtf8;
using Tolvex::ustring;

namespace {

/// What a question without an answer may have meant.
struct NearMiss {
    ustring file;
    std::string kind; ///< the verdict of a candidate, or how else it comes near
    std::string reason;
    bool isCandidate = false;
};

struct NearMisses {
    std::vector<NearMiss> files;
    bool isComplete = true;
};

void AddNameWithExtension(NearMisses& near, const Finder& finder, const Question& question) {
    const Question shorter = WithoutExtension(question);
    if (shorter.name.size() == question.name.size())
        return;
    const Explanation explanation = Explain(finder.GetPath(), shorter);
    if (explanation.winner != nullptr)
        near.files.push_back(
            {GetStringFromIRI(explanation.winner->file.GetItem().GetIRI()), "extension-in-name",
             fmt::format("answers to '{}', the name without its extension", Tolvex::ToUtf8(shorter.name))});
}

void AddQualifiedName(NearMisses& near, const Finder& finder, const Question& question) {
    const auto qualified = FindQualified(finder.GetPath(), question);
    if (!qualified)
        return;
    const ustring file = GetStringFromIRI(qualified->file.GetItem().GetIRI());
    if (std::ranges::find(near.files, file, &NearMiss::file) == near.files.end()) // else it is told why it does not
        near.files.push_back({file, "qualified-name", DescribeQualified(question, *qualified)});
}

NearMisses CollectNearMisses(const Finder& finder, const Question& question, const Explanation& explanation) {
    NearMisses near;
    for (const Candidate& candidate : explanation.candidates)
        near.files.push_back({GetStringFromIRI(candidate.file.GetItem().GetIRI()), std::string(candidate.verdict),
                              candidate.reason, true});
    AddNameWithExtension(near, finder, question);
    AddQualifiedName(near, finder, question);
    OffPathFiles offPath = FindOffPath(finder.GetPath(), question);
    near.isComplete = offPath.isComplete;
    for (const auto& [location, missingFolder] : offPath.files)
        near.files.push_back({GetStringFromIRI(location), "folder-not-on-path",
                              fmt::format("'{}' is not on the path", Tolvex::ToUtf8(GetStringFromIRI(missingFolder)))});
    return near;
}

class JsonReport {
public:
    explicit JsonReport(Output& output) : json(output) {}

    void Write(const Question& question, const Explanation& explanation, const NearMisses& near) {
        json.BeginObject();
        WriteText("name", question.name);
        json.Key("winner");
        if (explanation.winner != nullptr)
            json.String(GetStringFromIRI(explanation.winner->file.GetItem().GetIRI()));
        else
            json.Null();
        json.Key("candidates");
        json.BeginArray();
        for (const Candidate& candidate : explanation.candidates)
            WriteCandidate(candidate);
        json.EndArray();
        json.Key("near");
        json.BeginArray();
        for (const NearMiss& miss : near.files)
            WriteNearMiss(miss);
        json.EndArray();
        json.Key("near_is_complete");
        json.Boolean(near.isComplete);
        json.EndObject();
    }

private:
    void WriteCandidate(const Candidate& candidate) {
        json.BeginObject();
        WriteText("file", GetStringFromIRI(candidate.file.GetItem().GetIRI()));
        json.Key("place");
        if (candidate.place != 0)
            json.Number(candidate.place);
        else
            json.Null();
        WriteText("verdict", FromUtf8(candidate.verdict));
        WriteText("reason", FromUtf8(candidate.reason));
        json.EndObject();
    }

    void WriteNearMiss(const NearMiss& miss) {
        json.BeginObject();
        WriteText("file", miss.file);
        WriteText("kind", FromUtf8(miss.kind));
        WriteText("reason", FromUtf8(miss.reason));
        json.EndObject();
    }

    void WriteText(std::string_view key, Tolvex::ustring_view text) {
        json.Key(key);
        json.String(text);
    }

    JsonWriter json;
};

std::string ShowText(std::string_view utf8) {
    return ToDisplayText(FromUtf8(utf8));
}

void ShowCandidates(Output& output, const Explanation& explanation) {
    if (explanation.candidates.empty())
        return;
    output.Write("\nplace  file\n");
    for (const Candidate& candidate : explanation.candidates) {
        output.Write(fmt::format("{:>5}  {}\n", candidate.place == 0 ? "-" : std::to_string(candidate.place),
                                 ToDisplayText(GetStringFromIRI(candidate.file.GetItem().GetIRI()))));
        output.Write(fmt::format("       {}: {}\n", candidate.verdict, ShowText(candidate.reason)));
    }
}

void ShowNearMisses(Output& output, const NearMisses& near) {
    std::string_view heading = "\nNear, but not on the path under this name:\n";
    for (const NearMiss& miss : near.files) {
        if (miss.isCandidate)
            continue;
        output.Write(std::exchange(heading, ""));
        output.Write(
            fmt::format("       {}\n       {}: {}\n", ToDisplayText(miss.file), miss.kind, ShowText(miss.reason)));
    }
    if (!near.isComplete)
        output.Write(
            fmt::format("\nOnly {} folders below the path were looked into; there are more.\n", offPathFolderLimit));
}

void Show(Output& output, const Question& question, const Explanation& explanation, const NearMisses& near) {
    const std::string name = ToDisplayText(question.name);
    if (explanation.winner != nullptr)
        output.Write(fmt::format("'{}' is {}\n", name,
                                 ToDisplayText(GetStringFromIRI(explanation.winner->file.GetItem().GetIRI()))));
    else
        output.Write(fmt::format("Nothing on the path answers to '{}'.\n", name));
    ShowCandidates(output, explanation);
    ShowNearMisses(output, near);
}

} // namespace

ExitCode ReportExplanation(const Finder& finder, const Question& question, Output& output, bool asJson) {
    const Question complete = finder.Complete(question);
    const Explanation explanation = Explain(finder.GetPath(), complete);
    const bool isFound = explanation.winner != nullptr;
    const NearMisses near = isFound ? NearMisses{} : CollectNearMisses(finder, complete, explanation);
    if (asJson) {
        JsonReport(output).Write(complete, explanation, near);
        output.Write('\n');
    } else {
        Show(output, complete, explanation, near);
    }
    return isFound ? ExitCode::success : ExitCode::notFound;
}

} // namespace TolvexPath
