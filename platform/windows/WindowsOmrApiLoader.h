#pragma once

#include "platform/OmrApiBinding.h"

#include <filesystem>
#include <optional>

namespace kel {

/// OMRAPI.DLL, looked for beside the component and then where the system looks. A missing library is looked for anew at
/// the next call. One that is loaded stays so until the process ends, since the maker's library may have threads of its
/// own.
class WindowsOmrApiLoader final : public OmrApiLoader {
public:
    explicit WindowsOmrApiLoader(std::filesystem::path componentFolder);
    WindowsOmrApiLoader(const WindowsOmrApiLoader&) = delete;
    WindowsOmrApiLoader& operator=(const WindowsOmrApiLoader&) = delete;

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
        void* module_ = nullptr;
    };

    Library library_;
    std::optional<OmrApiBinding> binding_;
};

} // namespace kel
