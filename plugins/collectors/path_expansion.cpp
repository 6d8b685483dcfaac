#include "plugins/collectors/path_expansion.h"

#include <algorithm>
#include <charconv>
#include <utility>

namespace collectors {

int expandPath(const pwr::MachineFiles& machine, std::string_view path, std::vector<ExpandedPath>& found,
               std::string& error) {
    found.assign(1, ExpandedPath());
    if (!path.starts_with('/')) {
        error = "it must start with \"/\"";
        return 1;
    }
    std::vector<std::string> names;
    while (!path.empty()) {
        path.remove_prefix(1);
        const std::size_t end = std::min(path.find('/'), path.size());
        Pattern part;
        if (part.parse(path.substr(0, end), error) != 0) {
            return 1;
        }
        path.remove_prefix(end);
        std::vector<ExpandedPath> next;
        for (ExpandedPath& candidate : found) {
            if (!part.hasVariables()) {
                candidate.path += "/" + part.expand({});
                next.push_back(std::move(candidate));
                continue;
            }
            machine.list(candidate.path, names);
            for (const std::string& name : names) {
                Binding binding = candidate.binding;
                if (part.match(name, binding)) {
                    next.push_back({candidate.path + "/" + name, std::move(binding)});
                }
            }
        }
        found = std::move(next);
    }
    return 0;
}

int numberOf(const Binding& binding, std::string_view variable) {
    const std::string* text = binding.find(variable);
    int number = -1;
    if (text != nullptr) {
        std::from_chars(text->data(), text->data() + text->size(), number);
    }
    return number;
}

} // namespace collectors
