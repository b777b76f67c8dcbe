// SPDX-License-Identifier: GPL-3.0-or-later
// What a request for a week of agent activity costs when the logs have been read before, beside looking at
// every file's stamp. ActivityRequests HOME FIRST-DAY [LOG-TO-GROW]; prints one JSON object, times in
// seconds.
#include "Activity/AgentActivityLoader.h"

#include <QCoreApplication>
#include <QCoro/QCoroTask>
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sys/stat.h>
#include <vector>

namespace {

using namespace orvane;

constexpr int repetitions = 15;

double seconds(const std::function<void()> &work)
{
    const auto began = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - began).count();
}

std::vector<std::string> logsBelow(const std::string &home)
{
    std::vector<std::string> logs;
    for (const auto &entry : std::filesystem::recursive_directory_iterator(home + "/.claude/projects")) {
        if (entry.is_regular_file())
            logs.push_back(entry.path());
    }
    std::ranges::sort(logs);
    return logs;
}

/// The least of several times: what nothing else disturbed.
double least(const std::function<void()> &work)
{
    double time = seconds(work);
    for (int i = 1; i < repetitions; ++i)
        time = std::min(time, seconds(work));
    return time;
}

void require(bool condition, const char *message)
{
    if (condition)
        return;
    std::fprintf(stderr, "ActivityRequests: %s\n", message);
    std::exit(1);
}

struct Growth {
    double time = 0; ///< the least
    std::int64_t bytesRead = 0;
    std::int64_t bytesAdded = 0;
};

/// A line at a time is added to a log, and the week asked for again.
Growth grow(AgentActivityLoader &loader, const AgentActivityLoader::Request &request, const std::string &path)
{
    const std::string line =
        R"({"type":"assistant","sessionId":"grown","cwd":"/tmp","isSidechain":false,)"
        R"("gitBranch":"main","message":{"content":[]},"timestamp":"2026-04-08T10:00:00.000Z"})"
        "\n";
    Growth growth{.time = 1e9, .bytesRead = 0, .bytesAdded = std::ssize(line)};
    for (int i = 0; i < repetitions; ++i) {
        std::ofstream(path, std::ios::app | std::ios::binary) << line;
        AgentActivityLoader::Answer answer;
        growth.time = std::min(growth.time, seconds([&] { answer = QCoro::waitFor(loader.days(request)); }));
        growth.bytesRead = std::max(growth.bytesRead, answer.cost.bytesRead);
    }
    return growth;
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    require(argc >= 3, "HOME FIRST-DAY are needed");
    AgentActivityLoader::Request request;
    request.home = argv[1];
    const auto first = DayKey::parse(argv[2]);
    require(first.has_value(), "FIRST-DAY is no day");
    for (int i = 0; i < 7; ++i)
        request.days.push_back(first->adding(i));

    AgentActivityLoader loader;
    const auto cold = QCoro::waitFor(loader.days(request));
    const std::vector<std::string> logs = logsBelow(request.home);
    require(cold.cost.files == std::ssize(logs), "some logs were not found");

    std::int64_t bytesAgain = 0;
    const double again = least([&] { bytesAgain += QCoro::waitFor(loader.days(request)).cost.bytesRead; });
    std::int64_t sizes = 0;
    const double stamps = least([&] {
        for (const std::string &log : logs) {
            struct stat status{};
            sizes += ::stat(log.c_str(), &status) == 0 ? status.st_size : 0;
        }
    });
    require(sizes > 0, "the logs have gone");
    const Growth growth = argc > 3 ? grow(loader, request, argv[3]) : Growth{};
    std::printf(
        "{\"files\": %zu, \"cold\": %.6f, \"coldBytes\": %lld, \"again\": %.6f, \"againBytes\": %lld, "
        "\"stamps\": %.6f, \"grown\": %.6f, \"grownBytes\": %lld, \"added\": %lld}\n",
        logs.size(), cold.cost.seconds, static_cast<long long>(cold.cost.bytesRead), again,
        static_cast<long long>(bytesAgain), stamps, growth.time, static_cast<long long>(growth.bytesRead),
        static_cast<long long>(growth.bytesAdded));
    return 0;
}
