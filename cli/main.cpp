// SPDX-License-Identifier: GPL-3.0-or-later
#include "CommandLine.h"

int main(int argc, char **argv)
{
    return orvane::runCommandLine(argc, argv);
}
