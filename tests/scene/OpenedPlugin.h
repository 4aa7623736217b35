#pragma once

#include "scene/HostPlugin.h"

#include <gtest/gtest.h>

#include <dlfcn.h>
#include <link.h>

#include <string>

namespace kelvtest {

/// A shared object, opened as plug-in hosts open theirs, until the end of its scope.
class OpenedPlugin
{
public:
    explicit OpenedPlugin(const char* path) : m_handle(dlopen(path, RTLD_NOW | RTLD_LOCAL))
    {
        EXPECT_TRUE(m_handle) << dlerror();
    }
    ~OpenedPlugin()
    {
        if (!m_handle) return;
        EXPECT_EQ(dlclose(m_handle), 0) << dlerror();
    }
    OpenedPlugin(const OpenedPlugin&) = delete;
    OpenedPlugin& operator=(const OpenedPlugin&) = delete;

    explicit operator bool() const { return m_handle != nullptr; }

    int use() const { return function<PluginUse>("kelvPluginUse")(); }
    void show(osg::Group* scene) const { function<PluginShow>("kelvPluginShow")(scene); }
    void hide(osg::Group* scene) const { function<PluginHide>("kelvPluginHide")(scene); }
    void keep(int count) const { function<PluginKeep>("kelvPluginKeep")(count); }
    int countKept() const { return function<PluginCountKept>("kelvPluginCountKept")(); }
    void setFontSize(int size) const { function<PluginSetFontSize>("kelvPluginSetFontSize")(size); }
    int fontSize() const { return function<PluginFontSize>("kelvPluginFontSize")(); }

private:
    template <typename Function>
    Function& function(const char* name) const
    {
        return *reinterpret_cast<Function*>(dlsym(m_handle, name));
    }

    void* m_handle;
};

/// Path of the shared object in memory whose file has that name, or goes on with a version; empty if
/// there is none.
inline std::string pathInMemory(const std::string& name)
{
    struct Search
    {
        std::string name;
        std::string path;
    } search{'/' + name, {}};
    dl_iterate_phdr(
        [](dl_phdr_info* object, std::size_t, void* data) {
            auto& sought = *static_cast<Search*>(data);
            const std::string path = object->dlpi_name;
            if (path.find(sought.name) != std::string::npos) sought.path = path;
            return 0;
        },
        &search);
    return search.path;
}

inline bool isInMemory(const std::string& name)
{
    return !pathInMemory(name).empty();
}

} // namespace kelvtest
