// SPDX-License-Identifier: GPL-3.0-or-later
#include "CommandFixture.h"
#include "Terminal/TextWidth.h"

#include <sstream>

namespace orvane {
namespace {

/// Runs a program on a terminal of so many columns and prints what it shows, without colours.
constexpr const char *onTerminal = R"(
import fcntl, os, pty, re, struct, subprocess, sys, termios
ours, theirs = pty.openpty()
fcntl.ioctl(theirs, termios.TIOCSWINSZ, struct.pack("HHHH", 50, int(sys.argv[1]), 0, 0))
program = subprocess.Popen(sys.argv[2:], stdin=theirs, stdout=theirs, stderr=theirs)
os.close(theirs)
shown = b""
while True:
    try:
        shown += os.read(ours, 65536)
    except OSError:
        break
program.wait()
print(re.sub(r"\x1b\[[0-9;]*[A-Za-z]", "", shown.decode().replace("\r", "")), end="")
)";

class TerminalWidth : public Command {
protected:
    std::string shown(int width, const Arguments &command) const
    {
        Arguments arguments{"-c",         onTerminal,           std::to_string(width), builtProgram("orvane"),
                            "--data-dir", installation.folder()};
        arguments.insert(arguments.end(), command.begin(), command.end());
        Environment environment = installation.environment;
        environment["TERM"] = "xterm-256color";
        const CommandRun run = runProgram("python3", arguments, environment);
        EXPECT_EQ(run.exitStatus, 0) << run.errors;
        return run.output;
    }
};

TEST_F(TerminalWidth, IsKeptFromFortyColumnsOn)
{
    setNow("2026-03-04T15:00:00Z");
    done({"clients", "add", "Northwind Trading"});
    done({"projects", "add", "Warehouse migration", "--client", "Northwind", "--billable"});
    done({"tags", "add", "deep-work"});
    done({"add", "Write the README and tell everybody about it @warehouse #deep-work 9-11:30 $"});
    done({"start", "Call the people from the warehouse @warehouse #deep-work"});
    for (const int width : {40, 80}) {
        for (const Arguments &command :
             {Arguments{"status"}, Arguments{"list"}, Arguments{"list", "--week"},
              Arguments{"list", "--month", "--by", "client"}, Arguments{"projects"}, Arguments{"find", "w"},
              Arguments{"outbox"}, Arguments{"activity", "--home", installation.folder()},
              Arguments{"--help"}, Arguments{"list", "--help"}, Arguments{"list", "2026-01-01"}}) {
            std::istringstream lines(shown(width, command));
            int count = 0;
            for (std::string line; std::getline(lines, line); ++count)
                EXPECT_LE(displayWidth(line), width) << command.front() << ": " << line;
            EXPECT_GT(count, 0) << command.front();
        }
    }
    const std::string narrow = shown(40, {"list"});
    EXPECT_THAT(narrow, testing::HasSubstr(
                            "\n    Write the README and tell everybody\n    about it\n    ● Warehouse"));
}

} // namespace
} // namespace orvane
