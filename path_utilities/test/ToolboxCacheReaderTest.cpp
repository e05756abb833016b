#include "path_utilities/ToolboxCacheReader.h"

#include <gtest/gtest.h>

#include <memory>
#include <random>
#include <sstream>

namespace PathManagement {
namespace {

const std::string head = "<Harrowfen type=\"Path Cache File\" version=\"2.0\" date=\"Sat Nov 21 08:00:00 2026\">\n";
const std::string tail = "</Harrowfen>\n";

/// "name{children}(C:file N:file)", what a record says in one line.
std::string Describe(const ToolboxCacheRecord& record, std::size_t index = 0) {
    const auto& folder = record.GetFolders()[index];
    std::string text = Tolvex::ToUtf8(record.GetName(folder)) + "{";
    for (std::size_t child = index + 1; child < record.GetFolders().size(); ++child)
        if (record.GetFolders()[child].parent == index)
            text += Describe(record, child);
    text += "}(";
    for (const auto& file : record.GetFiles(folder))
        text += std::string(1, file.kind) + ":" + Tolvex::ToUtf8(record.GetName(file)) + " ";
    return text + ")";
}

struct Reading {
    std::vector<std::string> delivered;
    std::string message; // empty when all was read
};

Reading Read(std::istream& stream) {
    Reading reading;
    try {
        ReadToolboxCache(stream, [&](const auto& record) { reading.delivered.push_back(Describe(*record)); });
    } catch (const ToolboxCacheWrongFormatException& refusal) {
        reading.message = refusal.what();
    }
    return reading;
}

Reading Read(const std::string& text) {
    std::istringstream stream(text);
    return Read(stream);
}

/// Gives its text in pieces of a size, or without a buffer at all for 0; may break off with an exception.
class SlowBuffer final : public std::streambuf {
public:
    SlowBuffer(std::string text, std::size_t piece, bool breaks = false)
        : text(std::move(text)), piece(piece), breaks(breaks) {}

    [[nodiscard]] std::size_t GetTaken() const { return given - static_cast<std::size_t>(egptr() - gptr()); }

protected:
    int_type underflow() override {
        if (given == text.size()) {
            if (breaks)
                throw std::runtime_error("the disk is gone");
            return traits_type::eof();
        }
        if (piece == 0)
            return traits_type::to_int_type(text[given]);
        const std::size_t size = std::min(piece, text.size() - given);
        setg(text.data() + given, text.data() + given, text.data() + given + size);
        given += size;
        return traits_type::to_int_type(*gptr());
    }
    int_type uflow() override {
        return piece != 0             ? std::streambuf::uflow()
               : given == text.size() ? traits_type::eof()
                                      : traits_type::to_int_type(text[given++]);
    }

private:
    std::string text;
    std::size_t piece;
    bool breaks;
    std::size_t given = 0;
};

const std::string sample = head +
                           " <D name=\"a/lib\">\n"
                           "  <D name=\"a/lib/+p\">\n"
                           "   <C name=\"x.kx\"/>\n"
                           "  </D>\n"
                           "  <D name=\"a/lib/private\">\n"
                           "  </D>\n"
                           "  <C name=\"gr\u00f6\u00dfe.kx\"/>\n"
                           "  <N name=\"n & <m>.kxa\"/>\n"
                           "  <U name=\"\xff.txt\"/>\n"
                           " </D>\n"
                           " <D name=\"b\">\n"
                           " </D>\n" +
                           tail;
const std::vector<std::string> sampleFolders{
    "a/lib{a/lib/+p{}(C:x.kx )a/lib/private{}()}(C:gr\u00f6\u00dfe.kx N:n & <m>.kxa U:\xff.txt )", "b{}()"};

TEST(ToolboxCacheReader, ReadsWhatTheFormatAllows) {
    const std::vector<std::pair<std::string, std::vector<std::string>>> files{
        {sample, sampleFolders},
        {head + tail, {}},
        {" \t\r\n\v\f" + head + tail + "anything", {}},
        {"<Harrowfen type=\"Path Cache File\" version=\"2.0\" date=></Harrowfen>", {}},
        {head + "<Dname=\"a\"></D></Harrowfen>", {"a{}()"}},
        {head + "<D\n\n name=\"\"> \n</D>" + tail, {"{}()"}},
        {head + "<D name=\"a\"><C name=\"1\"/><D name=\"a/b\"><U name=\"2\"/></D><C name=\"3\"/></D>" + tail,
         {"a{a/b{}(U:2 )}(C:1 C:3 )"}},
        {head + "<D name=\"a\"><C name=\"two\nlines>\"/></D>" + tail, {"a{}(C:two\nlines> )"}},
    };
    for (const auto& [text, folders] : files) {
        const Reading reading = Read(text);
        EXPECT_EQ(reading.delivered, folders) << text;
        EXPECT_EQ(reading.message, "") << text;
    }
}

TEST(ToolboxCacheReader, RefusesEverythingElseAndSaysWhere) {
    const std::string folder = head + "<D name=\"a\">";
    const std::vector<std::pair<std::string, std::string>> files{
        {"", "ends after byte 0"},
        {"<Harrowfen type=\"Path Cache File\" version=\"2.1\" date=\"\"></Harrowfen>", "near byte 0"},
        {"<Harrowfen  type=\"Path Cache File\" version=\"2.0\" date=\"\"></Harrowfen>", "expected <Harrowfen type="},
        {"<Harrowfen version=\"2.0\" type=\"Path Cache File\" date=\"\"></Harrowfen>", "expected <Harrowfen type="},
        {"<?xml version=\"1.0\"?>" + sample, "expected <Harrowfen type="},
        {head + "< /Harrowfen>", "expected \"D\" or \"/\""},
        {head + "<C name=\"a\"/>" + tail, "expected \"D\" or \"/\""},
        {head + "text" + tail, "expected <"},
        {head + "</harrowfen>", "expected Harrowfen>"},
        {folder + "<X name=\"a\"/></D>" + tail, "expected \"D\", \"C\", \"N\", \"U\" or \"/\""},
        {head + "<D name=\"a\" ></D>" + tail, "expected >"},
        {head + "<D name= \"a\"></D>" + tail, "expected name="},
        {head + "<D name='a'></D>" + tail, "expected name="},
        {folder + "<C name=\"a\" /></D>" + tail, "expected />"},
        {folder + "<C name=\"a\"></C></D>" + tail, "expected />"},
        {folder + "<C name=\"say \"hi\".kx\"/></D>" + tail, "expected />"},
        {folder + "</ D>" + tail, "expected D>"},
        {folder + "<C name=\"endless", "the closing quote of a name was expected"},
    };
    for (const auto& [text, part] : files) {
        const Reading reading = Read(text);
        EXPECT_TRUE(reading.delivered.empty()) << text;
        EXPECT_NE(reading.message.find(part), std::string::npos) << text << "\n" << reading.message;
    }
}

TEST(ToolboxCacheReader, DeliversWholeFoldersOnlyWhereverTheFileIsCut) {
    const std::size_t whole = sample.rfind('>') + 1;
    const std::size_t firstEnd = sample.find("\n </D>") + 6;
    const std::size_t secondEnd = sample.rfind("</D>") + 4;
    for (std::size_t size = 0; size <= sample.size(); ++size) {
        const Reading reading = Read(sample.substr(0, size));
        ASSERT_EQ(reading.delivered.size(), (size >= firstEnd ? 1u : 0u) + (size >= secondEnd ? 1u : 0u)) << size;
        ASSERT_EQ(reading.message.empty(), size >= whole) << size;
    }
}

TEST(ToolboxCacheReader, EveryFlippedByteIsRefusedOrStaysInItsName) {
    const std::size_t dateBegin = sample.find("date=") + 5;
    for (std::size_t at = 0; at < sample.size(); ++at)
        for (const unsigned flip : {1u, 2u, 16u, 64u}) {
            std::string text = sample;
            text[at] = static_cast<char>(static_cast<unsigned char>(text[at]) ^ flip);
            const Reading reading = Read(text);
            if (at >= dateBegin && at < head.size() && reading.message.empty())
                continue;
            ASSERT_TRUE(!reading.message.empty() || reading.delivered.size() == 2) << at;
        }
}

TEST(ToolboxCacheReader, TakesNothingBehindTheEndFromAnyStream) {
    const std::string behind = "what somebody else put there";
    for (const std::size_t piece : {0u, 1u, 2u, 3u, 7u, 64u, 100000u}) {
        SlowBuffer buffer(sample.substr(0, sample.size() - 1) + behind, piece);
        std::istream stream(&buffer);
        const Reading reading = Read(stream);
        EXPECT_EQ(reading.delivered, sampleFolders) << piece;
        EXPECT_EQ(buffer.GetTaken(), sample.size() - 1) << piece;
        std::string rest;
        std::getline(stream, rest);
        EXPECT_EQ(rest, behind) << piece;
    }
}

TEST(ToolboxCacheReader, AStreamThatFailsIsRefused) {
    SlowBuffer buffer(sample.substr(0, sample.size() / 2), 16, true);
    std::istream stream(&buffer);
    EXPECT_NE(Read(stream).message.find("ends after byte"), std::string::npos);
    std::istringstream failed(sample);
    failed.setstate(std::ios_base::badbit);
    EXPECT_FALSE(Read(failed).message.empty());
}

/// Appends a folder of random contents to a file and returns how it is described.
std::string AppendRandomFolder(std::mt19937& random, const std::string& name, int depth, std::string& text) {
    std::string folders;
    std::string files;
    text += "<D name=\"" + name + "\">";
    for (auto parts = random() % 60; parts > 0; --parts) {
        if (depth < 3 && random() % 20 == 0) {
            folders += AppendRandomFolder(random, name + "/d", depth + 1, text);
        } else {
            const std::string file = std::string(random() % 40, 'a') + (random() % 3 == 0 ? "\u00f6" : ".kx");
            text += "\n <U name=\"" + file + "\"/>";
            files += "U:" + file + " ";
        }
    }
    text += "</D>";
    return name + "{" + folders + "}(" + files + ")";
}

TEST(ToolboxCacheReader, RecordsStayWhatTheyAreWhileOthersAreRead) {
    std::mt19937 random(7);
    std::string text = head;
    std::vector<std::string> expected(60);
    for (auto& folder : expected)
        folder = AppendRandomFolder(random, "r", 0, text);
    text += tail;
    for (const std::size_t piece : {std::size_t{1}, std::size_t{100}, text.size()}) {
        SlowBuffer buffer(text, piece);
        std::istream stream(&buffer);
        std::vector<std::shared_ptr<const ToolboxCacheRecord>> records;
        ReadToolboxCache(stream, [&](auto record) { records.push_back(std::move(record)); });
        ASSERT_EQ(records.size(), expected.size()) << piece;
        for (std::size_t i = 0; i < expected.size(); ++i)
            ASSERT_EQ(Describe(*records[i]), expected[i]) << piece;
    }
}

TEST(ToolboxCacheReader, DepthCostsNoStack) {
    constexpr int depth = 200'000;
    std::string text = head;
    for (int i = 0; i < depth; ++i)
        text += "<D name=\"a\">";
    for (int i = 0; i < depth; ++i)
        text += "</D>";
    std::istringstream stream(text + tail);
    std::size_t folders = 0;
    ReadToolboxCache(stream, [&](const auto& record) { folders += record->GetFolders().size(); });
    EXPECT_EQ(folders, static_cast<std::size_t>(depth));
}

} // namespace
} // namespace PathManagement
