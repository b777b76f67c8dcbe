#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Three jobs as a new user does them, at terminals of 40, 80 and 120 columns, with what the README and the help name:
two clients are billed for a week, a timer is stopped under a team's rules, and scripts show and bill time.

new_user.py ORVANE [--show]     (--show prints all that was shown, for people to look at)
"""

import concurrent.futures
import re
import sqlite3
import subprocess
import sys
import traceback

import terminal

WIDTHS = (40, 80, 120)
PASSWORD = "correct horse battery staple"


def words(text):
    """The text without its line breaks, which depend on the width; a shell would join what ends in a backslash."""
    return " ".join(text.replace(" \\\n", " ").split())


def shows_length(length, shown):
    """Give or take the seconds that the commands took."""
    hours, minutes, _ = map(int, length.split(":"))
    around = 3600 * hours + 60 * minutes
    found = [3600 * int(h) + 60 * int(m) + int(s) for h, m, s in re.findall(r"(\d+):(\d\d):(\d\d)", shown)]
    return any(abs(seconds - around) < 30 for seconds in found)


def bill_two_clients(installation):
    """An hour for each of two clients, and half an hour for nobody."""
    types = installation.types
    installation.now = "2026-03-02T09:00:00Z"
    assert "orvane projects add" in words(types("orvane projects")), "an empty list says how to fill it"
    types("orvane clients add Acme")
    types('orvane clients add "Globex Labs"')
    types("orvane projects add website --client Acme --rate 90 --billable")
    shown = words(types('orvane projects add "Apps for tablets" --client "Globex Labs" --rate 80.50'))
    types(re.search(r"To bill all of it: (orvane .*)", shown)[1])
    types("orvane projects")
    types('orvane start "Sketch the start page @website since 9:00"')
    installation.now = "2026-03-02T10:00:00Z"
    assert shows_length("1:00:00", types("orvane status"))
    assert "1:00:00" in types("orvane stop --at 10:00")
    installation.now = "2026-03-06T16:20:00Z"
    shown = words(types('orvane add "Sign-in page for tablets with fingerprints @apps #meeting thu 15:20-16:20"'))
    assert "1:00:00" in shown and "orvane tags add meeting" in shown, "an unknown tag comes with what makes it"
    types("orvane tags add meeting")
    types('orvane edit last "Sign-in page for tablets with fingerprints #meeting"')
    types('orvane add "Answer mail 9:00-9:30"')
    types("orvane list thursday")
    assert "2:30:00" in types("orvane list --week")
    clients = types("orvane list --week --by client")
    for expected in ("Acme", "Globex Labs", "90.00 EUR", "80.50 EUR", "no client", "170.50 EUR", "80%"):
        assert expected in clients, f"{expected} is missing in the week's totals:\n{clients}"
    types("orvane list --week --client Acme")
    types("orvane help list")
    report = installation.value("orvane list --week --by client --json")
    assert (report["seconds"], report["billableSeconds"], report["amount"]) == (9000, 7200, 170.5), report
    assert {group["name"]: group["seconds"] for group in report["groups"]} == {
        "Acme": 3600, "Globex Labs": 3600, None: 1800}, report


def script_with_json(installation):
    """In the same installation: the line, the module and the invoice that docs/json.md shows."""
    installation.now = "2026-03-06T16:20:00Z"
    line = re.search(r"#\((.*?)\)", terminal.block_with("status-right"))[1]
    module = terminal.block_with("for waybar, or")
    invoice = terminal.block_with("invoice CLIENT:")
    table = terminal.block_with("@csv")
    assert installation.run(line) == (0, " \n"), installation.run(line)
    assert installation.value(module) == {"text": "0:30:00", "class": "stopped", "tooltip": "0:30:00"}
    installation.types('orvane start "Shop & \\"cart\\" @website since 16:20"')
    installation.now = "2026-03-06T16:50:00Z"
    status, shown = installation.run(line)
    assert status == 0 and shown.startswith('Shop & "cart" ') and shows_length("0:30:00", shown), shown
    shown = installation.value(module)
    assert shown["text"].startswith('Shop & "cart" ') and shows_length("0:30:00", shown["text"]), shown
    assert shown["tooltip"].startswith("website · ") and shown["class"] == "running", shown
    installation.types("orvane stop --at 16:50")
    (installation.home / "invoice").write_text(invoice, encoding="utf-8")
    assert installation.types("bash invoice Acme").splitlines() == [
        "2026-03-02  1:00  website  Sketch the start page", '2026-03-06  0:30  website  Shop & "cart"',
        "website  1:30  135.00 EUR", "Total  1:30  135.00 EUR"]
    assert installation.run("bash invoice Nobody")[0] != 0, "a client that is not there is no empty invoice"
    assert sorted(installation.run(table)[1].splitlines()) == [
        '"Apps for tablets",1,1,80.5', '"no project",0.5,0,0', '"website",1.5,1.5,135']


class Team:
    """A server with an account that leads a workspace, and one that is put into it."""

    def __init__(self, host):
        self._host, self._server = host, None
        self.address = ""

    def serve(self):
        self._server = subprocess.Popen(["bash", "-c", "exec orvane serve"], env=self._host.environment(),
                                        stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True)
        self.address = self._server.stdout.readline().strip()
        assert self.address.startswith("http://"), "the server says where it is"

    def end(self):
        self._server.terminate()
        self._server.wait(30)
        self._server.stdout.close()

    def join(self, email, leader):
        """Nobody can be invited, so the server's database says that they were."""
        self.end()
        database = sqlite3.connect(self._host.data / "server" / "orvane-server.sqlite")
        joined = database.execute(
            "INSERT INTO workspace_members (workspace_id, user_id, role) SELECT workspace_id, joining.id, 'member' "
            "FROM workspace_members JOIN users AS leading ON leading.id = user_id, users AS joining "
            "WHERE leading.email = ? AND joining.email = ?", (leader, email)).rowcount
        database.commit()
        database.close()
        assert joined == 1
        self.serve()


def register(installation, team, email):
    # On a busy machine a password takes longer than the command waits; whoever looks again finds the account made.
    for how in ("--register", "", "--register"):
        try:
            return installation.types(f"orvane login --server {team.address} {how} --email {email} --password-stdin "
                                      f"<<<'{PASSWORD}'")
        except AssertionError as error:
            failed = error
    raise failed


def prepare_team(lead, member, team):
    register(lead, team, "lead@example.com")
    register(member, team, "mia@example.com")
    for line in ("settings set workspaceName Studio", "clients add Acme", "projects add website --client Acme",
                 "tags add review", "settings set requireProject on", "settings set requireTag on",
                 "settings set onlyAdminsCreateProjects on"):
        lead.types(f"orvane {line}")
    team.join("mia@example.com", "lead@example.com")


def stop_under_rules(member):
    """By what the messages tell: a member who knows neither the rules nor the names."""
    assert "Studio" in member.types("orvane workspaces")
    member.types("orvane workspaces use Studio")
    assert "requireProject on" in words(member.types("orvane settings"))
    member.types("orvane settings set requireTag off", status=1)
    member.now = "2026-03-06T09:00:00Z"
    hint = 'orvane stop "@project #tag"'
    assert hint in words(member.types('orvane start "Fix the header"'))
    member.now = "2026-03-06T10:00:00Z"
    assert hint in words(member.types("orvane status"))
    assert hint in words(member.types("orvane stop", status=1))
    project = re.search(r"● (\w+)", member.types("orvane projects"))[1]
    tag = re.search(r"(\w+)\s*$", member.types("orvane tags"))[1]
    # Half of it is refused whole, and what is to be said next holds both halves.
    assert hint in words(member.types(f'orvane stop "@{project}"', status=1))
    assert shows_length("1:00:00", member.types(hint.replace("project", project).replace("tag", tag)))
    entry = member.value("orvane list --json")["days"][0]["entries"][0]
    assert entry["stop"] and (entry["names"]["project"], entry["names"]["tags"]) == ("website", ["review"]), entry
    shown = words(member.types('orvane add "Call @nowhere 8:00-8:30"', status=1))
    assert "a project and a tag" in shown and "stays" not in shown, "nothing stays of what is refused"
    member.types(f'orvane add "Call @{project} #{tag} 8:00-8:30"')
    member.types(f"orvane projects add {project}2", status=1)
    shown = words(member.types(f'orvane parse "Call @{project}2"'))
    assert "administrators make one" in shown and "projects add" not in shown, "nobody is sent where they may not go"
    assert shows_length("1:30:00", member.types("orvane status"))


def work_under_rules(program, columns):
    with (terminal.Installation(program) as host, terminal.Installation(program, columns) as lead,
          terminal.Installation(program, columns) as member):
        team = Team(host)
        team.serve()
        try:
            prepare_team(lead, member, team)
            stop_under_rules(member)
            # While the server is there, so that they are over.
            lead.types("orvane logout")
            member.types("orvane logout")
        finally:
            team.end()
        return lead.transcript + member.transcript


def work_alone(program, columns):
    with terminal.Installation(program, columns) as installation:
        bill_two_clients(installation)
        script_with_json(installation)
        return installation.transcript


def problems_of_shape(transcript, columns):
    """Lines that are wider than the terminal, and texts that are cut off."""
    for line, shown in transcript:
        if line.startswith("bash "):  # a script of the user's own
            continue
        # A list has a line for each entry where there is room for one, and a calendar's blocks are as they are.
        may_cut = line.startswith("orvane list") and columns > WIDTHS[0] or "--week" in line
        for row in shown.splitlines():
            # A running entry has no end yet.
            cut = re.sub(r"– …|[A-Z]+…|\"… ", "", row)
            if len(row) > columns:
                yield f"{len(row)} columns of {columns} in {line}: {row}"
            if "…" in cut and not may_cut:
                yield f"cut at {columns} columns in {line}: {row}"


def vocabulary(transcript):
    """The words of what was shown, without what differs from one installation to the next."""
    # The week is a list on a narrow terminal and a picture on a wide one.
    text = "\n".join(shown for line, shown in transcript if "--week" not in line or "--by" in line)
    text = text.replace(" \\\n", "\n")
    text = re.sub(r"http://127\.0\.0\.1:\d+|\b[0-9a-f]{6,8}\b|\S*…\S*|[┌┐└┘│─\[\]·]", " ", text)
    return set(text.split())


def broken_words(transcripts):
    """What stands on a narrow terminal as a word that is none on a wide one."""
    known = vocabulary(transcripts[WIDTHS[-1]])
    for columns in WIDTHS[:-1]:
        # The share of the whole stands below a narrow table.
        for word in sorted(vocabulary(transcripts[columns]) - known - {"Billable:"}):
            if not re.search(r"\d", word):
                yield f"not a word at {columns} columns: {word}"


def play(job, program, columns):
    """What was shown, and what went wrong."""
    try:
        return job(program, columns), []
    except Exception:  # pylint: disable=broad-except
        return [], [f"{job.__name__} at {columns} columns: {traceback.format_exc()}"]


def main():
    jobs = (work_alone, work_under_rules)
    with concurrent.futures.ProcessPoolExecutor(4) as pool:
        plays = {(job, columns): pool.submit(play, job, sys.argv[1], columns) for columns in WIDTHS for job in jobs}
    transcripts = {columns: [] for columns in WIDTHS}
    problems = []
    for (_, columns), played in plays.items():
        transcript, wrong = played.result()
        transcripts[columns] += transcript
        problems += wrong + list(problems_of_shape(transcript, columns))
    if not problems:
        problems += broken_words(transcripts)
    if "--show" in sys.argv:
        for columns, transcript in transcripts.items():
            print("─" * columns)
            for line, shown in transcript:
                print(f"$ {line}\n{shown}")
    print(f"{sum(len(transcript) for transcript in transcripts.values())} commands played")
    sys.exit("\n".join(problems) if problems else 0)


if __name__ == "__main__":
    main()
