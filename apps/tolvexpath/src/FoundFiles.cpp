#include "FoundFiles.h"

#include "DisplayText.h"
#include "JsonWriter.h"
#include "Output.h"

#include "path_utilities/PathText.h"

namespace TolvexPath {

using PathManagement::FoundItem;
using PathManagement::GetStringFromIRI;

void WriteFoundJson(Output& output, std::span<const FoundItem> files) {
    JsonWriter json(output);
    json.BeginArray();
    for (const FoundItem& file : files) {
        json.BeginObject();
        json.Key("entry");
        json.String(GetStringFromIRI(file.GetEntry()->GetIRI()));
        json.Key("stem");
        json.String(file.GetItem().GetStem());
        json.Key("extension");
        json.String(file.GetItem().GetExtension());
        json.Key("file");
        json.String(GetStringFromIRI(file.GetItem().GetIRI()));
        json.EndObject();
    }
    json.EndArray();
    output.Write('\n');
}

void WriteFoundPaths(Output& output, std::span<const FoundItem> files, char terminator) {
    for (const FoundItem& file : files) {
        output.Write(Tolvex::ToUtf8(GetStringFromIRI(file.GetItem().GetIRI())));
        output.Write(terminator);
    }
}

void ShowFoundPaths(Output& output, std::span<const FoundItem> files) {
    for (const FoundItem& file : files)
        output.Write(ToDisplayText(GetStringFromIRI(file.GetItem().GetIRI())) + '\n');
}

} // namespace TolvexPath
