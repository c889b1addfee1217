// SPDX-License-Identifier: MIT
#pragma once

#include "platform/OmrApiBinding.h"

#include <filesystem>
#include <optional>

namespace kel {

/// The library of the USB readers' maker as a shared object.
///
/// Looked for beside the component and then on the dynamic loader's own path, as libOMRAPI.so and OMRAPI.so; beside the
/// component the name OMRAPI.DLL is taken too. A missing library is looked for again at the next call. One that is
/// loaded stays so until the process ends, since the maker's library may have threads of its own.
class PosixOmrApiLoader final : public OmrApiLoader {
public:
    explicit PosixOmrApiLoader(std::filesystem::path componentFolder);
    PosixOmrApiLoader(const PosixOmrApiLoader&) = delete;
    PosixOmrApiLoader& operator=(const PosixOmrApiLoader&) = delete;

    [[nodiscard]] OmrApi& omrApi() override { return *binding_; }
    void libraryFile(const std::filesystem::path& file) override;

    /// What `omrApi` gives, as what it is: for a look at which functions a library has.
    [[nodiscard]] OmrApiBinding& binding() { return *binding_; }

private:
    class Library final : public SymbolSource {
    public:
        explicit Library(std::filesystem::path componentFolder) : componentFolder_(std::move(componentFolder)) {}
        [[nodiscard]] void* find(const char* name) override;
        void file(const std::filesystem::path& file);

    private:
        [[nodiscard]] void* load() const;

        std::filesystem::path componentFolder_;
        std::filesystem::path file_;
        void* handle_ = nullptr;
    };

    Library library_;
    std::optional<OmrApiBinding> binding_;
};

} // namespace kel
