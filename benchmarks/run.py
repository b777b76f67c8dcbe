#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Builds the benchmarks, runs them and prints one table of ratios, each with its budget.

A ratio compares our work with the same work done bare, in one run on one machine: the two sides take turns, so that
what else the machine does falls on both. The exit status is 1 when a budget does not hold.
"""

import argparse
import json
import os
import pathlib
import statistics
import subprocess
import sys
import tempfile

import activity_runs
import command_runs
import compile_runs
import live_runs
import queue_runs
import server_runs
import window_runs


ROOT = pathlib.Path(__file__).resolve().parent.parent
BUILD = ROOT / "build" / "bench"
PROGRAMS = BUILD / "benchmarks"


def build(targets):
    subprocess.run(["cmake", "--preset", "bench"], cwd=ROOT, check=True, stdout=subprocess.DEVNULL)
    subprocess.run(["cmake", "--build", "--preset", "bench", "--target", *targets], cwd=ROOT, check=True)


def times(program, repetitions, folder, clock="real_time"):
    """The time of every repetition of each benchmark in a program, in nanoseconds; `clock` is "cpu_time" for work that
    never waits. Where a benchmark counts a rate, also that, as "benchmark.rate"."""
    with tempfile.NamedTemporaryFile(suffix=".json") as out:
        subprocess.run(
            [PROGRAMS / program, f"--benchmark_repetitions={repetitions}", "--benchmark_enable_random_interleaving",
             "--benchmark_min_time=0.1", f"--benchmark_out={out.name}", "--benchmark_out_format=json"],
            check=True, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL,
            env={**os.environ, "ORVANE_BENCHMARK_FOLDER": folder})
        measured = json.load(out)
    unit = {"ns": 1, "us": 1e3, "ms": 1e6, "s": 1e9}
    found = {}
    for run in measured["benchmarks"]:
        if run["run_type"] == "iteration":
            name = run["run_name"].split("/")[0]
            found.setdefault(name, []).append(run[clock] * unit[run["time_unit"]])
            if "rate" in run:
                found.setdefault(name + ".rate", []).append(run["rate"])
    return found


def row(name, measured, budget=None, at_least=False, form="{:.2f}"):
    if budget is None:
        return {"name": name, "measured": form.format(measured), "budget": "none", "holds": True}
    holds = measured >= budget if at_least else measured <= budget
    return {"name": name, "measured": form.format(measured), "budget": ("≥ " if at_least else "≤ ") + str(budget),
            "holds": holds}


def store_round(arguments):
    found = times("StoreBenchmark", max(3, arguments.repetitions // 3), arguments.folder)
    # The disk's own moods are part of both sides, so the middle counts; work of the processor alone is known by the
    # runs that nothing else disturbed.
    submit = statistics.median(found["submit.rate"])
    read = min(found["readStore"]) / min(found["readBare"])
    return submit, read


def store_rows(arguments):
    rounds = [store_round(arguments) for _ in range(5)]
    yield row("durable submits, rate beside bare SQLite inserts, worst of five", min(submit for submit, _ in rounds), 0.8,
              at_least=True)
    yield row("10,000 queued changes read, beside rows and parsing alone, worst of five", max(read for _, read in rounds),
              2)


def queue_rows(arguments):
    with tempfile.TemporaryDirectory(dir=arguments.folder) as folder:
        runs = [queue_runs.draining(BUILD / "bin", PROGRAMS, folder) for _ in range(max(1, arguments.repetitions // 5))]
        short, long, bare = (min(values) for values in zip(*runs))
        hanging, behind = queue_runs.starting(BUILD / "bin", folder)
    yield row("4,000 queued changes sent, processor time beside 1,000", long / short, 5)
    yield row("a change sent, processor time beside a bare request and commit", short / bare, 2)
    yield row("start with a server that hangs, in s", hanging[0], 3)
    yield row("start beside 2,000 queued changes, in s", behind[0], 3)
    yield row("the later of their moments, ms after the call", 1e3 * max(hanging[1], behind[1]), 100, form="{:.0f}")


def json_rows(arguments):
    found = times("JsonBenchmark", arguments.repetitions, arguments.folder)
    for verb in ("decode", "encode"):
        ratio = min(found[verb + "Layer"]) / min(found[verb + "ByHand"])
        yield row(f"{verb} 10,000 entries, beside code by hand", ratio, 1.5)


def timeline_rows(arguments):
    measured = times("TimelineBenchmark", arguments.repetitions, arguments.folder, "cpu_time")
    found = {name: min(runs) / 1e6 for name, runs in measured.items()}
    yield row("a day from 50,000 events, in ms", found["dayOf50000"], 10)
    yield row("a day from 50,000 prompts, in ms", found["promptsOf50000"], 20)
    yield row("a day from twice the events, beside the half", found["dayOf100000"] / found["dayOf50000"], 2.6)


def calendar_rows(arguments):
    found = times("CalendarBenchmark", arguments.repetitions, arguments.folder, "cpu_time")
    # Time that grows by n log n little more than doubles when n does; searching all lanes of the day would take 2.36
    # times as long. What a year holds outgrows the processor's caches on the way.
    for what, name, budget in (("a day of 500 entries", "layoutDay", 2.25),
                               ("a year of 10,000 entries", "layoutYear", 2.6)):
        yield row(f"layout of {what}, beside half of them", min(found[name]) / min(found[name + "Half"]), budget)


def quick_entry_rows(arguments):
    measured = times("QuickEntryBenchmark", arguments.repetitions, arguments.folder)
    found = {name: min(runs) / 1e3 for name, runs in measured.items()}
    yield row("a sentence with 2,000 items, in µs", found["sentenceRead"], 20)
    yield row("the same, beside a split of the line", found["sentenceRead"] / found["sentenceSplit"])
    yield row("5,000 names ranked, beside a search in folded names", found["rankNames"] / found["scanNames"], 3)


def command_rows(arguments):
    with tempfile.TemporaryDirectory(dir=arguments.folder) as folder:
        status, offline, line = command_runs.measure(BUILD / "bin", PROGRAMS, folder, 2 * arguments.repetitions)
    yield row("status with 5,000 entries, beside the same requests alone", status[0] / status[1], 2)
    yield row("status with 5,000 entries, peak memory in MB", status[2], 60, form="{:.0f}")
    yield row("list without the server, beside a program that does nothing", offline[0] / offline[1], 3)
    yield row("a bar's line with 5,000 entries and 100 changes, beside a parse of the snapshot", line[0] / line[1], 1.5)


def activity_rows(arguments):
    folder = pathlib.Path(arguments.folder)
    one, two, memory = activity_runs.cold(BUILD / "bin", folder, max(3, arguments.repetitions // 3))
    for times, cores, budget in ((one, "one core", 3), (two, "two cores", 2)):
        if "peer" in times:
            yield row(f"500 MB of logs into days, throughput beside {activity_runs.PEER}, {cores}",
                      times["peer"] / times["orvane"], 4, at_least=True)
        yield row(f"500 MB of logs into days, time beside wc -l, {cores}", times["orvane"] / times["wc"], budget)
    yield row("500 MB of logs into days, peak memory in MB", memory, 40, form="{:.1f}")
    unchanged, grown = activity_runs.again(PROGRAMS, folder)
    yield row("the same week again, 10,000 logs, beside their stamps alone", unchanged["again"] / unchanged["stamps"], 2)
    yield row("the same week again, bytes of logs read", unchanged["againBytes"], 0, form="{:.0f}")
    yield row("a line more in a log of 100 MB, ms beside its stamp", 1e3 * (grown["grown"] - grown["stamps"]), 2)
    yield row("a line more in a log of 100 MB, bytes read beside it", grown["grownBytes"] - grown["added"],
              2 * (4096 + 64), form="{:.0f}")


def server_rows(arguments):
    seconds = 10 if arguments.quick else 30
    with tempfile.TemporaryDirectory(dir=arguments.folder) as folder:
        rounds = [server_runs.beside_registrations(BUILD / "bin", folder) for _ in range(max(1, arguments.repetitions // 3))]
        load, bare = server_runs.under_load(BUILD / "bin", PROGRAMS, folder, 200, seconds)
    yield row("a GET beside 16 registrations, beside one alone", statistics.median(busy / idle for idle, busy in rounds), 3)
    yield row("a GET alone, in ms", 1e3 * statistics.median(idle for idle, _ in rounds))
    yield row("200 clients that list and change: answers that should not be", load["unexpected"], 0, form="{:.0f}")
    yield row("the same: changes that were answered and are not there", load["lost"], 0, form="{:.0f}")
    yield row("the same: requests a second", load["requests"] / load["seconds"], form="{:.0f}")
    yield row("bare transactions of that work, one after the other, a second", bare["transactions"] / bare["seconds"],
              form="{:.0f}")
    yield row("200 clients that list and change: requests a second of processor time", load["requests"] / load["used"], form="{:.0f}")
    yield row("bare transactions of that work, a second of processor time", bare["transactions"] / bare["used"],
              form="{:.0f}")
    yield row("200 clients that list and change: the 99th percentile, in ms", load["p99"])
    yield row("a bare transaction of that work: the 99th percentile, in ms", bare["p99"])


def live_rows(arguments):
    with tempfile.TemporaryDirectory(dir=arguments.folder) as folder:
        ours, bare = live_runs.latency(BUILD / "bin", PROGRAMS, folder, 40 * arguments.repetitions)
        memory, heard = live_runs.crowd(BUILD / "bin", folder, 1000, arguments.repetitions)
    yield row("a change to the news of it on another client, beside a bare POST, commit and WebSocket", ours / bare, 2)
    yield row("the same, in ms", 1e3 * ours)
    yield row("1,000 watching connections: the server's memory for each, in KiB", memory, form="{:.1f}")
    yield row("the same: a change until all have heard, in ms", 1e3 * heard, form="{:.0f}")


def compile_rows(arguments):
    with tempfile.TemporaryDirectory(dir=arguments.folder) as folder:
        count, seconds = compile_runs.all_calls(BUILD, folder)
    yield row(f"a source that calls all {count} operations, in seconds of the compiler", seconds, 20)


def window_rows(arguments):
    seconds = 20 if arguments.quick else 60
    with tempfile.TemporaryDirectory(dir=arguments.folder) as folder:
        found = window_runs.measure(BUILD / "bin", PROGRAMS, folder, max(3, arguments.repetitions // 3), seconds)
    yield row("the window with 5,000 entries: the frame that shows them, beside an empty window's first", found["ratio"]["firstFrame"], 3)
    yield row("the same, in ms", found["open"]["firstFrame"], form="{:.0f}")
    yield row("the same, memory beside an empty window", found["ratio"]["memory"], 2.5)
    yield row("the same, in MB", found["open"]["memory"], form="{:.0f}")
    yield row(f"scrolling {found['scroll']['rows']} rows, eight a frame: 99th percentile of work, in ms",
              found["scroll"]["p99"], 16)
    yield row("a letter typed, to the frame: 99th percentile of work, in ms", found["type"]["p99"], 16)
    yield row("the same in the panel over 5,000 rows", found["panel"]["p99"], 16)
    yield row("a change on another device, to the frame that shows it, in ms", found["painted"])
    yield row(f"a timer runs for {seconds} s: frames", found["rest"]["frames"], seconds + 1, form="{:.0f}")
    yield row("the same: processor, in %", found["rest"]["processor"], 0.5)
    yield row(f"hidden for {seconds} s: frames", found["hidden"]["frames"], 0, form="{:.0f}")
    yield row("the same, connected: voluntary switches a minute", found["hidden"]["switches"] * 60 / seconds, 80,
              form="{:.0f}")


GROUPS = {"store": (store_rows, ["StoreBenchmark"]), "json": (json_rows, ["JsonBenchmark"]),
          "timeline": (timeline_rows, ["TimelineBenchmark"]),
          "calendar": (calendar_rows, ["CalendarBenchmark"]),
          "quickentry": (quick_entry_rows, ["QuickEntryBenchmark"]),
          "activity": (activity_rows, ["orvane", "ActivityRequests"]),
          "queue": (queue_rows, ["orvane", "orvane-server", "BareDrain"]),
          "server": (server_rows, ["orvane-server", "ServerLoad", "BareTransactions"]),
          "live": (live_rows, ["orvane-server", "BareLive"]),
          "compile": (compile_rows, ["OrvaneKit"]),
          "window": (window_rows, ["orvane", "orvane-server", "WindowBenchmark", "BareWindow"]),
          "command": (command_rows, ["orvane", "orvane-server", "BareStatus", "BareStatusLine", "BareIdle"])}


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("groups", nargs="*", choices=[*GROUPS, []], help="all of them unless named")
    parser.add_argument("--no-build", action="store_true", help="take the programs as they are")
    parser.add_argument("--repetitions", type=int, default=15, help="of each side (default: 15)")
    parser.add_argument("--folder", default=str(PROGRAMS), help="where the stores lie; must be on a real disk")
    parser.add_argument("--quick", action="store_true", help="load the server for ten seconds instead of thirty")
    arguments = parser.parse_args()
    groups = arguments.groups or list(GROUPS)
    if not arguments.no_build:
        build([target for group in groups for target in GROUPS[group][1]])
    rows = []
    for group in groups:
        print(f"measuring: {group}", file=sys.stderr)
        rows.extend(GROUPS[group][0](arguments))
    width = max(len(line["name"]) for line in rows)
    print(f"{'':{width}}  measured  budget")
    for line in rows:
        print(f"{line['name']:{width}}  {line['measured']:>8}  {line['budget']:<8}  {'ok' if line['holds'] else 'MISSED'}")
    return 0 if all(line["holds"] for line in rows) else 1


if __name__ == "__main__":
    sys.exit(main())
