// SPDX-License-Identifier: MIT
#pragma once

#include "platform/OmrApiBinding.h"

#include <filesystem>
#include <optional>

namespace kel {

/// OMRAPI.DLL, looked for beside the component and then where the system looks. A missing library is looked for again
/// at the next call, and one of the other width is as good as missing. One that is loaded stays so until the process
/// ends, since the maker's library may have threads of its own. The maker's own edition is 32 bits wide: one for 64
/// bits that lacks a function is none.
class WindowsOmrApiLoader final : public OmrApiLoader {
public:
    explicit WindowsOmrApiLoader(std::filesystem::path componentFolder);
    WindowsOmrApiLoader(const WindowsOmrApiLoader&) = delete;
    WindowsOmrApiLoader& operator=(const WindowsOmrApiLoader&) = delete;

    [[nodiscard]] OmrApi& omrApi() override { return *binding_; }
    void libraryFile(const std::filesystem::path& file) override;
    [[nodiscard]] Int32 widthNeeded() const override { return library_.widthNeeded(); }

    /// What `omrApi` gives, as what it is: for a look at which functions a library has.
    [[nodiscard]] OmrApiBinding& binding() { return *binding_; }

private:
    class Library final : public SymbolSource {
    public:
        explicit Library(std::filesystem::path componentFolder) : componentFolder_(std::move(componentFolder)) {}
        [[nodiscard]] void* find(const char* name) override;
        [[nodiscard]] void* findDecorated(const char* name, std::size_t argumentBytes) override;
        [[nodiscard]] Int32 widthNeeded() const { return isUnfit_ ? kWidth : 0; }
        void file(const std::filesystem::path& file);

    private:
        static constexpr Int32 kWidth = sizeof(void*) * 8;

        [[nodiscard]] void* load();
        [[nodiscard]] void* open(const std::filesystem::path& file);
        [[noreturn]] void failUnfit();

        std::filesystem::path componentFolder_;
        std::filesystem::path file_;
        void* module_ = nullptr;
        bool isUnfit_ = false;
    };

    Library library_;
    std::optional<OmrApiBinding> binding_;
};

} // namespace kel
