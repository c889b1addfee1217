#include "startup/Main.h"
#include "cli/CommandLine.h"

int main(int argc, char** argv)
{
    kel::Main();
    return kel::runCommandLine(argc, argv);
}
