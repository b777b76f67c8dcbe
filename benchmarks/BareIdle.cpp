// SPDX-License-Identifier: GPL-3.0-or-later
// The measure for a command that needs no server: what it costs to start and end a program with the command's
// libraries.
int main()
{
    return 0;
}
