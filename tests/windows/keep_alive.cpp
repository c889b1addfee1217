// SPDX-License-Identifier: MIT
#include <windows.h>

// Does nothing, for longer than all tests take.
int main()
{
    ::Sleep(30 * 60 * 1000);
}
