// SPDX-License-Identifier: GPL-3.0-or-later
// Runs histories of devices, programs and a server in one thread and judges how they end. A failing seed
// prints its history, and gives the same history each time.
#include "simulator/Simulation.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QLoggingCategory>
#include <cinttypes>
#include <cstdio>
#include <cstring>

using namespace orvane::simulator;

namespace {

struct Options {
    std::uint64_t first = 1;
    std::uint64_t count = 300;
    std::optional<int> seconds;
    bool printsHistory = false;
    int mostFailures = 1;
};

std::string folderFor(const QTemporaryDir &place, std::uint64_t seed)
{
    const QString path = place.filePath(QString::number(seed));
    QDir().mkpath(path);
    return path.toStdString();
}

Verdict judge(const QTemporaryDir &place, std::uint64_t seed)
{
    Simulation simulation(seed, folderFor(place, seed));
    Verdict verdict = simulation.run();
    verdict.seed = seed;
    return verdict;
}

void print(const Verdict &verdict)
{
    for (const std::string &line : verdict.history)
        std::printf("%s\n", line.c_str());
    for (const std::string &fault : verdict.faults)
        std::printf("FAULT  seed %" PRIu64 ": %s\n", verdict.seed, fault.c_str());
}

bool read(int argc, char **argv, Options &options)
{
    for (int i = 1; i < argc; ++i) {
        const char *value = i + 1 < argc ? argv[i + 1] : nullptr;
        if (std::strcmp(argv[i], "--history") == 0) {
            options.printsHistory = true;
            continue;
        }
        if (value == nullptr)
            return false;
        const auto number = std::strtoull(value, nullptr, 10);
        if (std::strcmp(argv[i], "--seed") == 0)
            options.first = number, options.count = 1;
        else if (std::strcmp(argv[i], "--first") == 0)
            options.first = number;
        else if (std::strcmp(argv[i], "--count") == 0)
            options.count = number;
        else if (std::strcmp(argv[i], "--seconds") == 0)
            options.seconds = static_cast<int>(number);
        else if (std::strcmp(argv[i], "--failures") == 0)
            options.mostFailures = static_cast<int>(number);
        else
            return false;
        ++i;
    }
    return true;
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    QLoggingCategory::setFilterRules(QStringLiteral("orvane.*=false"));
    Options options;
    if (!read(argc, argv, options)) {
        std::fprintf(
            stderr,
            "usage: Simulator [--seed N | --first N] [--count N] [--seconds N] [--failures N] [--history]\n");
        return 2;
    }
    // Syncing is simulated, so memory will do.
    const QTemporaryDir place(QDir(QStringLiteral("/dev/shm")).exists()
                                  ? QStringLiteral("/dev/shm/orvane-simulator-XXXXXX")
                                  : QString());
    QElapsedTimer clock;
    clock.start();
    std::uint64_t done = 0;
    int failed = 0;
    for (std::uint64_t seed = options.first;; ++seed) {
        const bool isOver = options.seconds ? clock.hasExpired(std::int64_t{1000} * *options.seconds)
                                            : seed >= options.first + options.count;
        if (isOver || failed >= options.mostFailures)
            break;
        const Verdict verdict = judge(place, seed);
        ++done;
        if (done <= 10 && judge(place, seed).history != verdict.history) {
            std::printf("FAULT  seed %" PRIu64 " does not give the same history twice\n", seed);
            ++failed;
        }
        if (options.printsHistory || !verdict.faults.empty())
            print(verdict);
        failed += verdict.faults.empty() ? 0 : 1;
    }
    std::printf("%" PRIu64 " histories, %d with faults, %.0f a minute\n", done, failed,
                static_cast<double>(done) * 60'000 /
                    static_cast<double>(std::max<qint64>(clock.elapsed(), 1)));
    return failed == 0 ? 0 : 1;
}
