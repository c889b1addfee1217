// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/BuiltFiles.h"

#include <gtest/gtest.h>

#include <clocale>
#include <cstdlib>
#include <string>

namespace kel::test {

/// The environment of a user whose numbers are German (or another country's): "12,5" and "1.000". The build has made
/// the locale, so that it is there on every machine.
class UsersLocale {
public:
    explicit UsersLocale(const char* name = "de_DE.UTF-8")
    {
        ::setenv("LOCPATH", builtLocales().c_str(), 1);
        ::setenv("LC_ALL", name, 1);
    }
    ~UsersLocale()
    {
        std::setlocale(LC_ALL, before_.c_str());
        ::unsetenv("LC_ALL");
        ::unsetenv("LOCPATH");
    }
    UsersLocale(const UsersLocale&) = delete;
    UsersLocale& operator=(const UsersLocale&) = delete;

    /// Makes it the locale of the process too, as a host does.
    void takenByTheProcess()
    {
        const char* const taken = std::setlocale(LC_ALL, "");
        ASSERT_NE(taken, nullptr) << builtLocales();
    }

private:
    const std::string before_ = std::setlocale(LC_ALL, nullptr);
};

} // namespace kel::test
