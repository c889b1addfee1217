// SPDX-License-Identifier: MIT
#include "cli/CommandLine.h"

int main(int argc, char** argv)
{
    return kel::runCommandLine(argc, argv);
}
