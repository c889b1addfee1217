// SPDX-License-Identifier: MIT
#pragma once

#include "platform/FileDescriptor.h"
#include "platform/Registry.h"
#include "platform/posix/RegistryFolders.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kel {

class HiveDatabase;

/// One hive of the registry: its file, opened when it is there, created by the first write, and set aside when it is
/// damaged. The rules are those of `Registry`, with the key as a path.
class HiveStore {
public:
    explicit HiveStore(HiveFile file);
    ~HiveStore();

    [[nodiscard]] std::optional<RegistryValue> read(std::string_view subKey, std::string_view name);
    bool create(std::string_view subKey);
    bool write(std::string_view subKey, std::string_view name, const RegistryValue& value);
    bool together(const std::function<bool()>& body);
    bool removeValue(std::string_view subKey, std::string_view name);
    bool removeKey(std::string_view subKey);
    [[nodiscard]] bool exists(std::string_view subKey);
    [[nodiscard]] std::vector<std::string> valueNames(std::string_view subKey);
    [[nodiscard]] std::vector<std::string> subKeys(std::string_view subKey);

private:
    template <class Result, class Work>
    Result withDatabase(bool create, Result fallback, Work&& work);

    [[nodiscard]] bool open(bool create);
    void openFile(bool create);
    [[nodiscard]] bool createFile() const;
    [[nodiscard]] FileDescriptor lockFolder(int kind) const;
    [[nodiscard]] bool setAside(const std::string& damage);
    [[nodiscard]] bool rename(const std::string& damage);
    void tell(const std::string& text);

    /// Which file a name stands for.
    struct Identity {
        dev_t device = 0;
        ino_t number = 0;
        friend bool operator==(const Identity&, const Identity&) = default;
    };
    [[nodiscard]] std::optional<Identity> identity() const;

    HiveFile file_;
    std::optional<Identity> opened_;
    std::unique_ptr<HiveDatabase> database_;
    bool beginsTogether_ = false; // the database begins with a transaction of several writes once it is open
    std::string told_;
};

} // namespace kel
