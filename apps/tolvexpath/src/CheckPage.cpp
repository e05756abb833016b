#include "CheckPage.h"

#include "CheckPageTemplate.h"
#include "DisplayText.h"
#include "PathCheck.h"

#include "path_utilities/PathText.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <map>
#include <utility>

namespace TolvexPath {

using PathManagement::FoundItem;
using PathManagement::GetStringFromIRI;

namespace {

// The bar's picture, in its own units: as wide as the page, whatever that is.
constexpr double width = 1000;
constexpr double arcHeight = 110;
constexpr double barHeight = 50;
constexpr std::size_t mostArcs = 300;     // more are a blot
constexpr std::size_t mostNames = 20;     // below the bar; more have no room
constexpr double leastNamed = 60;         // shorter pieces have room for their number only
constexpr std::size_t mostShownOpen = 30; // longer lists of problems are opened by whoever wants to see them

/// UTF-8 between tags or in quotes.
std::string Escape(std::string_view shown) {
    std::string html;
    for (const char c : shown) {
        constexpr std::string_view special = "&<>\"'";
        constexpr std::string_view escapes[] = {"&amp;", "&lt;", "&gt;", "&quot;", "&#39;"};
        const std::size_t which = special.find(c);
        if (which == std::string_view::npos)
            html += c;
        else
            html += escapes[which];
    }
    return html;
}

/// Control characters are shown as escapes.
std::string Html(Tolvex::ustring_view text) {
    return Escape(ToDisplayText(text));
}

/// The same for running text, which may be broken behind a "/".
std::string RunningHtml(std::string_view shown) {
    std::string html;
    for (const char c : Escape(shown)) {
        html += c;
        if (c == '/')
            html += "<wbr>";
    }
    return html;
}

/// The folder that all of these lie in, as it is shown; empty when it is the root, or when there are not several.
std::string FindSharedFolder(const std::vector<FolderOnPath>& folders) {
    if (folders.size() < 2)
        return {};
    Tolvex::ustring shared(folders.front().entry->GetIRI().getPath());
    for (const FolderOnPath& folder : folders) {
        const Tolvex::ustring_view other = folder.entry->GetIRI().getPath();
        shared.resize(static_cast<std::size_t>(std::ranges::mismatch(shared, other).in1 - shared.begin()));
    }
    shared.resize(std::min(shared.rfind(u'/'), shared.size()));
    return ToDisplayText(shared);
}

std::string Count(std::size_t count, std::string_view thing) {
    return fmt::format("{} {}{}", count, thing, count == 1 ? "" : "s");
}

/// Where a folder's piece of the bar lies.
struct Piece {
    double start;
    double length;
};

class Page {
public:
    explicit Page(const PathCheck& check)
        : check(check), sharedFolder(FindSharedFolder(check.folders)), effects(check.folders.size()) {
        for (std::size_t i = 0; i < check.folders.size(); ++i)
            numbers.emplace(check.folders[i].entry.get(), i);
        for (const NameConflict& conflict : check.conflicts)
            for (const FoundItem& hidden : conflict.hidden)
                CountHidden(FindFolder(conflict.winner), FindFolder(hidden));
        LayOut();
    }

    [[nodiscard]] std::string Make() const {
        std::string page;
        std::string_view rest = checkPageTemplate;
        for (std::size_t hole = rest.find("{{"); hole != std::string_view::npos; hole = rest.find("{{")) {
            const std::size_t end = rest.find("}}", hole);
            page += rest.substr(0, hole);
            page += FillIn(rest.substr(hole + 2, end - hole - 2));
            rest.remove_prefix(end + 2);
        }
        return page += rest;
    }

private:
    struct Effects {
        std::size_t hides = 0;  // files of later folders
        std::size_t hidden = 0; // of its own files
    };

    [[nodiscard]] std::string FillIn(std::string_view hole) const {
        if (hole == "summary")
            return SummariseCheck(check);
        if (hole == "shared")
            return DescribeSharedFolder();
        if (hole == "bar")
            return DrawBar();
        if (hole == "problems")
            return ListProblems();
        return ListFolders();
    }

    [[nodiscard]] std::string DescribeSharedFolder() const {
        if (sharedFolder.empty())
            return "";
        return fmt::format("<p class=\"quiet\"><b>…</b> stands for <span id=\"shared\">{}</span></p>",
                           RunningHtml(sharedFolder));
    }

    /// Running text in which the names of files and folders leave out what they share.
    [[nodiscard]] std::string Shorten(Tolvex::ustring_view text) const {
        std::string shown = ToDisplayText(text);
        const std::string beginning = sharedFolder + '/';
        for (std::size_t at = 0; !sharedFolder.empty() && (at = shown.find(beginning, at)) != std::string::npos; ++at)
            if (at == 0 || shown[at - 1] == '\'') // else it is in the middle of a name
                shown.replace(at, sharedFolder.size(), "…");
        return RunningHtml(shown);
    }

    [[nodiscard]] std::size_t FindFolder(const FoundItem& file) const {
        return numbers.at(check.path->GetMainEntryForEntry(*file.GetEntry()).get());
    }

    void CountHidden(std::size_t winner, std::size_t loser) {
        ++effects[winner].hides;
        ++effects[loser].hidden;
        if (winner != loser)
            ++arcs[{winner, loser}];
    }

    /// By number of files, but none so short that it cannot be seen.
    void LayOut() {
        const auto count = static_cast<double>(check.folders.size());
        const double least = check.folders.empty() ? 0 : std::min(10., width / 2 / count);
        const double perFile = (width - count * least) / static_cast<double>(std::max<std::size_t>(check.fileCount, 1));
        double start = 0;
        for (const FolderOnPath& folder : check.folders) {
            const double length =
                check.fileCount == 0 ? width / count : least + perFile * static_cast<double>(folder.fileCount);
            pieces.push_back({start, length});
            start += length;
        }
    }

    [[nodiscard]] std::string NameOf(std::size_t folder) const {
        return Html(GetStringFromIRI(check.folders[folder].entry->GetIRI()));
    }

    [[nodiscard]] std::string DrawBar() const {
        if (check.folders.empty())
            return "<p>The path is empty.</p>";
        const auto drawn = SelectArcs();
        // The more there are, the fainter each is drawn.
        const double ink = std::clamp(25. / static_cast<double>(drawn.size() + 1), 0.2, 0.8);
        std::string svg = fmt::format("<svg class=\"bar\" style=\"--ink: {:.2f}\" viewBox=\"0 0 {} {}\" "
                                      "preserveAspectRatio=\"none\" role=\"img\" "
                                      "aria-label=\"The folders of the path in order, as long as they have files\">\n",
                                      ink, width, arcHeight + barHeight);
        for (const auto& [pair, names] : drawn)
            svg += DrawArc(pair.first, pair.second, names);
        for (std::size_t i = 0; i < pieces.size(); ++i)
            svg += DrawPiece(i);
        return svg + "</svg>\n" + NamePieces() + Explain(drawn.size());
    }

    [[nodiscard]] std::string NamePieces() const {
        if (pieces.size() > mostNames)
            return "<p class=\"quiet ends\"><span>first on the path</span><span>last</span></p>\n";
        std::string names;
        for (std::size_t i = 0; i < pieces.size(); ++i)
            names += fmt::format(
                "<span style=\"flex-grow: {:.2f}\">{}{}</span>", pieces[i].length, i + 1,
                pieces[i].length < leastNamed ? "" : ' ' + Html(check.folders[i].entry->GetIRI().getBaseName()));
        return "<p class=\"quiet names\">" + names + "</p>\n";
    }

    [[nodiscard]] std::string Explain(std::size_t drawnArcs) const {
        std::string text = "<p class=\"quiet\">Each piece is a folder, the longer the more files it brings";
        if (!check.conflicts.empty())
            text += "; orange is the share of them that folders before it hide. An arc leads from a folder to a later "
                    "one that it hides files of, the thicker the more";
        if (drawnArcs < arcs.size())
            text += fmt::format(" (the {} strongest of {} are drawn)", drawnArcs, arcs.size());
        return text + ".</p>";
    }

    using Arcs = std::vector<std::pair<std::pair<std::size_t, std::size_t>, std::size_t>>;

    [[nodiscard]] Arcs SelectArcs() const {
        Arcs strongest(arcs.begin(), arcs.end());
        std::ranges::stable_sort(strongest, std::ranges::greater(), &Arcs::value_type::second);
        strongest.resize(std::min(strongest.size(), mostArcs));
        return strongest;
    }

    [[nodiscard]] std::string DrawArc(std::size_t winner, std::size_t loser, std::size_t names) const {
        const double from = pieces[winner].start + pieces[winner].length / 2;
        const double to = pieces[loser].start + pieces[loser].length / 2;
        // The curve's top is three quarters of the way to its control points.
        const double top = arcHeight - (12 + (arcHeight - 16) * std::sqrt(std::abs(to - from) / width)) * 4 / 3;
        return fmt::format("<path class=\"arc\" d=\"M{0:.1f} {1} C{0:.1f} {2:.1f} {3:.1f} {2:.1f} {3:.1f} {1}\" "
                           "stroke-width=\"{4:.1f}\"><title>{5} hides {6} of {7}</title></path>\n",
                           from, arcHeight, top, to, 1.5 + std::log2(static_cast<double>(names)) / 2, NameOf(winner),
                           Count(names, "file"), NameOf(loser));
    }

    [[nodiscard]] std::string DrawPiece(std::size_t i) const {
        const auto& [start, length] = pieces[i];
        const std::size_t files = check.folders[i].fileCount;
        std::string svg =
            fmt::format("<a href=\"#folder-{0}\"><title>{0}: {1}, {2}</title><rect class=\"f{3}\" x=\"{4:.2f}\" "
                        "y=\"{5}\" width=\"{6:.2f}\" height=\"{7}\"/>",
                        i + 1, NameOf(i), Count(files, "file"), i % 2, start, arcHeight, length, barHeight);
        if (effects[i].hidden > 0) {
            const double share = barHeight * static_cast<double>(effects[i].hidden) / static_cast<double>(files);
            svg += fmt::format("<rect class=\"share\" x=\"{:.2f}\" y=\"{:.1f}\" width=\"{:.2f}\" height=\"{:.1f}\"/>",
                               start, arcHeight + barHeight - share, length, share);
        }
        return svg + "</a>\n";
    }

    [[nodiscard]] std::string ListProblems() const {
        std::string html;
        for (const ProblemKind& kind : GetProblemKinds()) {
            std::string list;
            std::size_t count = 0;
            for (const PathProblem& problem : check.problems) {
                if (problem.kind != kind.name)
                    continue;
                ++count;
                list += fmt::format("<li><span class=\"subject\">{}</span><br>{}</li>\n", Shorten(problem.subject),
                                    Shorten(Tolvex::FromUtf8(problem.message)));
            }
            if (count > 0)
                html += fmt::format("<details{}>\n<summary>{} ({})</summary>\n<ul>\n{}</ul>\n</details>\n",
                                    count > mostShownOpen ? "" : " open", Escape(kind.heading), count, list);
        }
        return html.empty() ? "<p>None.</p>" : html;
    }

    [[nodiscard]] std::string ListFolders() const {
        std::string html;
        for (std::size_t i = 0; i < check.folders.size(); ++i)
            html +=
                fmt::format("<li id=\"folder-{0}\" class=\"folder\"><span class=\"place\">{0}</span><span>{1}</span>"
                            "<span class=\"count\">{2}</span>{3}</li>\n",
                            i + 1, Shorten(GetStringFromIRI(check.folders[i].entry->GetIRI())),
                            Count(check.folders[i].fileCount, "file"), DescribeEffects(effects[i]));
        return html;
    }

    [[nodiscard]] static std::string DescribeEffects(const Effects& effects) {
        std::string text;
        if (effects.hidden > 0)
            text += fmt::format("<span class=\"lost\">{} hidden</span>", effects.hidden);
        if (effects.hides > 0)
            text += fmt::format("{}hides {}", text.empty() ? "" : ", ", Count(effects.hides, "file"));
        return text.empty() ? "" : "<span class=\"effects\">" + text + "</span>";
    }

    const PathCheck& check;
    std::string sharedFolder;
    std::map<const PathManagement::IPathEntry*, std::size_t> numbers; // of main folders, from 0
    std::vector<Effects> effects;                                     // of each folder
    std::vector<Piece> pieces;                                        // of each folder
    std::map<std::pair<std::size_t, std::size_t>, std::size_t> arcs;  // winner and loser to number of files
};

} // namespace

std::string MakeCheckPage(const PathCheck& check) {
    return Page(check).Make();
}

std::string SummariseCheck(const PathCheck& check) {
    return fmt::format("{}, {}, {}", Count(check.folders.size(), "folder"), Count(check.fileCount, "file"),
                       check.problems.empty() ? "nothing wrong" : Count(check.problems.size(), "problem"));
}

} // namespace TolvexPath
