// SPDX-License-Identifier: GPL-3.0-or-later
#include "Desktop/DesktopProgram.h"

int main(int argc, char **argv)
{
    return orvane::runDesktop(argc, argv);
}
