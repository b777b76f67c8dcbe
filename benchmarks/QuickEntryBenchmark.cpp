// SPDX-License-Identifier: GPL-3.0-or-later
// Reading a sentence with a catalog of 2,000 items beside a plain split of the same line at white space, and
// ranking 5,000 names beside a search for the same letters in the same names, folded before.
#include "QuickEntry/EntrySentence.h"
#include "QuickEntry/Palette.h"

#include <algorithm>
#include <array>
#include <benchmark/benchmark.h>
#include <cstdio>
#include <random>

namespace {

using namespace orvane;

constexpr std::string_view line = "Fix the sync bug @backend-zr #deep-w yesterday 9-10:30 $";
constexpr std::string_view query = "sta";
constexpr std::size_t shownRows = 50;

constexpr std::array words = {
    "Website",  "Mobile",    "Backend", "Data",     "Station", "Report",   "Internal", "Billing",
    "Search",   "Stage",     "Support", "Café",     "Office",  "Research", "Cloud",    "Status",
    "Platform", "Marketing", "Design",  "Install",  "Client",  "Quality",  "Release",  "Analysis",
    "Sync",     "Queue",     "Garden",  "Customer", "Nova",    "Tools",
};

/// Names as workspaces have them: two words and something that tells them apart.
std::vector<std::string> makeNames(std::size_t count)
{
    std::mt19937_64 random(20'250'307);
    std::vector<std::string> names;
    for (std::size_t i = 0; i < count; ++i) {
        std::string name =
            std::string(words[random() % words.size()]) + ' ' + words[random() % words.size()] + ' ';
        name += static_cast<char>('A' + random() % 26);
        name += static_cast<char>('A' + random() % 26);
        names.push_back(std::move(name));
    }
    return names;
}

/// 800 projects with a task each, 200 clients and 200 tags.
const SentenceCatalog &catalog()
{
    static const SentenceCatalog made = [] {
        const auto names = makeNames(2000);
        std::vector<ProjectResponse> projects;
        std::vector<ClientResponse> clients;
        std::vector<TagResponse> tags;
        for (std::size_t i = 0; i < 800; ++i) {
            ProjectResponse &project = projects.emplace_back();
            project.id = "p" + std::to_string(i);
            project.name = i == 400 ? "Backend ZR 2" : names[i];
            project.tasks = {{"k" + std::to_string(i), project.id, names[800 + i], true}};
        }
        for (std::size_t i = 0; i < 200; ++i) {
            clients.push_back({"c" + std::to_string(i), "w", names[1600 + i], false});
            tags.push_back({"t" + std::to_string(i), "w", i == 100 ? "deep-work" : names[1800 + i]});
        }
        return SentenceCatalog(projects, clients, tags);
    }();
    return made;
}

const Instant now =
    std::chrono::sys_days{std::chrono::year{2025} / std::chrono::March / 7} + std::chrono::hours{15};

EntrySentence::Reading readLine()
{
    static const UserTime calendar = UserTime::make("Europe/Paris").value();
    return EntrySentence::read(line, catalog(), {}, now, calendar);
}

void sentenceRead(benchmark::State &state)
{
    for (auto step : state) {
        static_cast<void>(step);
        benchmark::DoNotOptimize(readLine());
    }
}
BENCHMARK(sentenceRead)->Unit(benchmark::kMicrosecond);

void sentenceSplit(benchmark::State &state)
{
    for (auto step : state) {
        static_cast<void>(step);
        std::vector<std::string> parts;
        for (std::size_t start = 0; start < line.size();) {
            const std::size_t end = std::min(line.find(' ', start), line.size());
            parts.emplace_back(line.substr(start, end - start));
            start = end + 1;
        }
        benchmark::DoNotOptimize(parts);
    }
}
BENCHMARK(sentenceSplit)->Unit(benchmark::kMicrosecond);

const Palette &palette()
{
    static const Palette made = [] {
        std::vector<PaletteItem> items;
        for (const std::string &name : makeNames(5000))
            items.push_back({PaletteItem::Kind::project, name, name, {}, "project:" + name});
        return Palette(std::move(items));
    }();
    return made;
}

PaletteUsage usage()
{
    PaletteUsage usage;
    for (std::size_t i = 0; i < PaletteUsage::mostKeys; ++i)
        usage.record(palette().items()[i * 41].key, now - std::chrono::hours{i});
    return usage;
}

void rankNames(benchmark::State &state)
{
    const PaletteUsage picked = usage();
    for (auto step : state) {
        static_cast<void>(step);
        benchmark::DoNotOptimize(palette().find(query, picked, now, shownRows));
    }
}
BENCHMARK(rankNames)->Unit(benchmark::kMicrosecond);

std::vector<std::string> foldedNames()
{
    std::vector<std::string> folded;
    for (const PaletteItem &item : palette().items())
        folded.push_back(FoldedText::of(item.name).text());
    return folded;
}

std::vector<std::size_t> scan(const std::vector<std::string> &folded)
{
    std::vector<std::size_t> found;
    for (std::size_t i = 0; i < folded.size(); ++i) {
        if (folded[i].find(query) != std::string::npos)
            found.push_back(i);
    }
    return found;
}

void scanNames(benchmark::State &state)
{
    const auto folded = foldedNames();
    for (auto step : state) {
        static_cast<void>(step);
        benchmark::DoNotOptimize(scan(folded));
    }
}
BENCHMARK(scanNames)->Unit(benchmark::kMicrosecond);

/// What is measured is only worth something when it does what it should: everything in the line is
/// understood, and the palette finds what the scan does (and initials besides).
bool bothDoTheirWork()
{
    const auto reading = readLine();
    const auto found = palette().find(query, usage(), now);
    const auto scanned = scan(foldedNames());
    return reading.projectID == "p400" && reading.tagIDs == std::vector<std::string>{"t100"} &&
           reading.time && reading.day && reading.isBillable && reading.description == "Fix the sync bug" &&
           !scanned.empty() && std::ranges::all_of(scanned, [&](std::size_t i) {
               return std::ranges::find(found, i, &Palette::Found::item) != found.end();
           });
}

} // namespace

int main(int argc, char **argv)
{
    if (!bothDoTheirWork()) {
        std::fprintf(stderr, "QuickEntryBenchmark: the line or the names are not understood\n");
        return 1;
    }
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
