#include "toolchain/common/ObjectLayout.h"

#include "object/SOBFModule.h"

#include <algorithm>

HString* intern(std::string_view text) {
    return HString::intern(text.data() ? text.data() : "", static_cast<int>(text.size()), HString::AsIs);
}

std::vector<std::string_view> listAttribute(const SOBFModule& module, std::string_view key) {
    std::vector<std::string_view> entries;
    const HString* value = module.attributes.value(intern(key));
    std::string_view rest = value ? value->view() : std::string_view();
    while (!rest.empty()) {
        const size_t end = std::min(rest.find(';'), rest.size());
        if (end > 0)
            entries.push_back(rest.substr(0, end));
        rest.remove_prefix(std::min(end + 1, rest.size()));
    }
    return entries;
}

void setAttribute(SOBFModule& module, std::string_view key, std::string_view value) {
    module.attributes.set(intern(key), intern(value));
}

void setListAttribute(SOBFModule& module, std::string_view key, const std::vector<std::string>& entries) {
    std::string text;
    for (const std::string& entry : entries)
        text += (text.empty() ? "" : ";") + entry;
    if (!text.empty())
        setAttribute(module, key, text);
}
