#include "ManifestJson.h"

#include <boost/json.hpp>
#include <boost/uuid/string_generator.hpp>
#include <boost/uuid/uuid_io.hpp>

#include <algorithm>
#include <type_traits>

namespace TolvexPackages {

using Tolvex::FromUtf8;
using Tolvex::ToUtf8;
using TolvexComponents::ComponentVersion;

namespace json = boost::json;

namespace {

/// A name becomes part of a folder's name, is typed after a command, and stands before "@" and the version.
bool IsPackageName(std::string_view name) {
    constexpr std::size_t longest = 128; // bytes
    const auto isRefused = [](char c) {
        return static_cast<unsigned char>(c) <= ' ' || c == 0x7F || c == '/' || c == '@';
    };
    return !name.empty() && name.size() <= longest && std::string_view(".+-").find(name[0]) == std::string_view::npos &&
           std::none_of(name.begin(), name.end(), isRefused);
}

/// One of the texts between the dots of what follows "-" in a version.
bool IsPreReleasePart(std::string_view part) {
    const bool isNumber = part.find_first_not_of("0123456789") == std::string_view::npos;
    return !part.empty() && (!isNumber || part.size() == 1 || part[0] != '0');
}

bool IsPreRelease(std::string_view mark) {
    for (;;) {
        const std::size_t dot = mark.find('.');
        if (!IsPreReleasePart(mark.substr(0, dot)))
            return false;
        if (dot == std::string_view::npos)
            return true;
        mark.remove_prefix(dot + 1);
    }
}

ComponentVersion ReadVersion(const LocatedObject& object) {
    constexpr std::size_t longest = 64; // it becomes part of a folder's name
    const std::string& text = object.GetText("version");
    const auto version = ComponentVersion::fromString(FromUtf8(text));
    const std::size_t dash = text.find('-');
    if (text.size() > longest || !version || ToUtf8(version->toString()) != text ||
        (dash != std::string::npos && !IsPreRelease(std::string_view(text).substr(dash + 1))))
        object.Refuse(object.Get("version").line, "'" + text + "' is no version such as '1.4.0' or '2.0.0-beta.1'");
    return *version;
}

ComponentIdentifier::UniqueID ReadUniqueID(const LocatedObject& object) {
    constexpr std::size_t length = 36;
    const std::string& text = object.GetText("id");
    try {
        const auto uniqueID = boost::uuids::string_generator()(text);
        if (text.size() == length && !uniqueID.is_nil())
            return uniqueID;
    } catch (const std::runtime_error&) { // refused below
    }
    object.Refuse(object.Get("id").line,
                  "'" + text + "' is no unique identifier; write a new one, as 'uuidgen' makes them");
}

ComponentIdentifier ReadIdentifier(const LocatedObject& object) {
    const std::string& name = object.GetText("name");
    if (!IsPackageName(name))
        object.Refuse(object.Get("name").line,
                      "'" + name +
                          "' is no name for a package: more than 128 bytes, blanks, control characters, '/', '@', and "
                          "'.', '+', '-' in front are not taken");
    return {FromUtf8(name), ReadVersion(object), ReadUniqueID(object)};
}

bool LeadsUp(const std::filesystem::path& folder) {
    return folder.is_absolute() || std::find(folder.begin(), folder.end(), "..") != folder.end();
}

std::string ReadFolder(const LocatedObject& object, const LocatedValue& value) {
    const auto* const text = std::get_if<std::string>(&value.value);
    if (text == nullptr || text->empty() || text->find('\0') != std::string::npos)
        object.Refuse(value.line, "a folder has to be a text that is not empty");
    if (LeadsUp(*text))
        object.Refuse(value.line,
                      "the folder '" + *text + "' has to lie inside the package: write it relative to this file");
    return *text;
}

std::vector<std::string> ReadFolders(const LocatedObject& object) {
    if (object.Find("folders") == nullptr)
        return {"."};
    std::vector<std::string> folders;
    for (const LocatedValue& value : object.GetArray("folders")) {
        std::string folder = ReadFolder(object, value);
        if (folders.empty() != (folder == "."))
            object.Refuse(value.line, "the first folder, and no other, is the package's root, '.'");
        if (std::find(folders.begin(), folders.end(), folder) != folders.end())
            object.Refuse(value.line, "the folder '" + folder + "' stands there twice");
        folders.push_back(std::move(folder));
    }
    if (folders.empty())
        object.Refuse(object.Get("folders").line, "the first folder is the package's root, '.'");
    return folders;
}

PropertyValue ReadProperty(const LocatedObject& object, const LocatedMember& member) {
    const auto& value = member.value.value;
    if (member.name == manualInstallProperty)
        object.Refuse(member.line, "'" + member.name + "' is set by installing and cannot be given here");
    if (member.name == pathPositionProperty && !std::holds_alternative<std::string>(value))
        object.Refuse(member.value.line, "'" + member.name + "' has to be text");
    if (const auto* const text = std::get_if<std::string>(&value))
        return FromUtf8(*text);
    if (const auto* const truth = std::get_if<bool>(&value))
        return *truth;
    if (const auto* const whole = std::get_if<std::int64_t>(&value))
        return *whole;
    if (const auto* const number = std::get_if<double>(&value))
        return *number;
    object.Refuse(member.value.line, "the property '" + member.name + "' has to be true or false, a number or text");
}

json::value MakePropertyJson(const PropertyValue& property) {
    const auto make = [](const auto& value) -> json::value {
        if constexpr (std::is_same_v<std::decay_t<decltype(value)>, Tolvex::ustring>)
            return json::string(ToUtf8(value));
        else
            return value;
    };
    return std::visit(make, property);
}

} // namespace

PackageManifest ReadManifestJson(const LocatedValue& value, const std::string& fileName) {
    const LocatedObject object(value, fileName, "a package's manifest");
    object.RefuseOthers({"name", "version", "id", "folders", "properties"});
    PackageManifest manifest{.identifier = ReadIdentifier(object), .folders = ReadFolders(object)};
    if (const LocatedValue* const properties = object.Find("properties")) {
        const LocatedObject propertyObject(*properties, fileName, "'properties'");
        for (const LocatedMember& member : propertyObject.GetMembers())
            manifest.properties.emplace(member.name, ReadProperty(propertyObject, member));
    }
    return manifest;
}

json::value MakeManifestJson(const PackageManifest& manifest) {
    json::object properties;
    for (const auto& [name, property] : manifest.properties)
        properties.emplace(name, MakePropertyJson(property));
    const ComponentIdentifier& identifier = manifest.identifier;
    return {{"name", ToUtf8(identifier.GetName())},
            {"version", ToUtf8(identifier.GetVersion().toString())},
            {"id", boost::uuids::to_string(identifier.GetUniqueID())},
            {"folders", json::array(manifest.folders.begin(), manifest.folders.end())},
            {"properties", std::move(properties)}};
}

} // namespace TolvexPackages
