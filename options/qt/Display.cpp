// SPDX-License-Identifier: MIT
#include "options/qt/Display.h"

#include <QCoreApplication>
#include <QDir>
#include <QLibraryInfo>

#include <dlfcn.h>

namespace kel {

namespace {

/// A library for as long as it is looked into.
class Library {
public:
    explicit Library(const char* name) : handle_(::dlopen(name, RTLD_LAZY | RTLD_LOCAL)) {}
    ~Library()
    {
        if (handle_)
            ::dlclose(handle_);
    }
    Library(const Library&) = delete;
    Library& operator=(const Library&) = delete;

    template <class Function>
    [[nodiscard]] Function function(const char* name) const
    {
        return handle_ ? reinterpret_cast<Function>(::dlsym(handle_, name)) : nullptr;
    }
    [[nodiscard]] explicit operator bool() const { return handle_ != nullptr; }

private:
    void* handle_;
};

/// Whether the X server that DISPLAY names lets this process in.
bool xServerAnswers()
{
    const Library xcb("libxcb.so.1");
    const auto connect = xcb.function<void* (*)(const char*, int*)>("xcb_connect");
    const auto hasError = xcb.function<int (*)(void*)>("xcb_connection_has_error");
    const auto disconnect = xcb.function<void (*)(void*)>("xcb_disconnect");
    if (!connect || !hasError || !disconnect)
        return false;
    void* const connection = connect(nullptr, nullptr);
    const bool answers = hasError(connection) == 0;
    disconnect(connection);
    return answers;
}

/// Whether the Wayland compositor that WAYLAND_DISPLAY names lets this process in.
bool waylandAnswers()
{
    const Library wayland("libwayland-client.so.0");
    const auto connect = wayland.function<void* (*)(const char*)>("wl_display_connect");
    const auto disconnect = wayland.function<void (*)(void*)>("wl_display_disconnect");
    void* const display = connect && disconnect ? connect(nullptr) : nullptr;
    if (display)
        disconnect(display);
    return display != nullptr;
}

QStringList pluginFolders()
{
    QStringList folders;
    if (qEnvironmentVariableIsSet("QT_QPA_PLATFORM_PLUGIN_PATH"))
        folders << qEnvironmentVariable("QT_QPA_PLATFORM_PLUGIN_PATH");
    for (const QString& path : qEnvironmentVariable("QT_PLUGIN_PATH").split(':', Qt::SkipEmptyParts))
        folders << path + "/platforms";
    folders << QLibraryInfo::path(QLibraryInfo::PluginsPath) + "/platforms";
    return folders;
}

/// Whether Qt has a plug-in for a platform, and whatever that one needs.
bool canBeLoaded(const QString& platform)
{
    for (const QString& folder : pluginFolders()) {
        const QDir plugins(folder);
        for (const QString& file : plugins.entryList({"libq" + platform + ".so", "libq" + platform + "-*.so"})) {
            if (Library(plugins.filePath(file).toLocal8Bit().constData()))
                return true;
        }
    }
    return false;
}

QStringList candidates()
{
    if (!qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        return qEnvironmentVariable("QT_QPA_PLATFORM").split(';', Qt::SkipEmptyParts);
    QStringList platforms;
    if (!qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY"))
        platforms << "wayland";
    if (!qEnvironmentVariableIsEmpty("DISPLAY"))
        platforms << "xcb";
    return platforms;
}

/// Why a platform cannot be used; empty if it can.
QString objection(const QString& platform)
{
    if (!canBeLoaded(platform))
        return QString("Qt's plug-in for %1 is missing or cannot be loaded").arg(platform);
    if (platform == "xcb" && !xServerAnswers())
        return QString("the X server at DISPLAY=%1 does not let this process in").arg(qEnvironmentVariable("DISPLAY"));
    if (platform.startsWith("wayland") && !waylandAnswers())
        return QString("the compositor at WAYLAND_DISPLAY=%1 does not let this process in")
            .arg(qEnvironmentVariable("WAYLAND_DISPLAY"));
    return {};
}

} // namespace

Display findDisplay()
{
    QStringList objections;
    for (const QString& candidate : candidates()) {
        const QString why = objection(candidate.section(':', 0, 0));
        if (why.isEmpty())
            return {candidate.toStdString(), {}};
        objections << why;
    }
    if (objections.isEmpty())
        objections << "neither DISPLAY nor WAYLAND_DISPLAY is set";
    return {{}, ("The options dialog cannot be shown without a display: " + objections.join(", ") + ".").toStdString()};
}

} // namespace kel
