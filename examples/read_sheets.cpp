// SPDX-License-Identifier: MIT
// Reads the sheets of a reader in a loop and prints the marks of each, one line a sheet.
// Usage: read_sheets MODEL DEVICE [SHEETS]; "read_sheets VMR138 /dev/ttyUSB0", or "simulated" instead of a device.

#include <KELReader81U/host/Reader.h>

#include <cstdlib>
#include <iostream>
#include <string_view>

int main(int argc, char** argv)
try {
    if (argc < 3) {
        std::cerr << "usage: read_sheets MODEL DEVICE [SHEETS]\n";
        return EXIT_FAILURE;
    }
    kel::host::Request request{.model = argv[1], .maxSheets = argc > 3 ? std::atoi(argv[3]) : -1};
    if (argv[2] == std::string_view("simulated"))
        request.simulated = kel::host::Simulation{.unlimited = true};
    else
        request.device = argv[2];

    kel::host::Reader reader(request);
    for (const kel::host::Sheet& sheet : reader.sheets()) {
        std::cout << "Sheet " << sheet.number << ' ' << sheet.barcode() << ':';
        for (const kel::host::Mark& mark : sheet.marks())
            std::cout << ' ' << mark.row << '/' << mark.column;
        std::cout << '\n';
    }
    return EXIT_SUCCESS;
} catch (const std::exception& failure) {
    std::cerr << failure.what() << '\n';
    return EXIT_FAILURE;
}
