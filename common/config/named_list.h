#pragma once

#include <memory>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

namespace pwr {

/// Objects that are looked up by their name and listed in the order of adding. Owns them; they stay where they are.
/// The object answers getName(), and its name never changes: the index refers to it.
template <class Object> class NamedList {
public:
    NamedList() = default;
    NamedList(const NamedList&) = delete;
    NamedList& operator=(const NamedList&) = delete;

    [[nodiscard]] Object* find(std::string_view name) const {
        const auto found = m_index.find(name);
        return found == m_index.end() ? nullptr : found->second;
    }
    /// The name must be a new one.
    Object& add(std::unique_ptr<Object> object) {
        Object& added = *object;
        m_objects.push_back(std::move(object));
        m_index.emplace(added.getName(), &added);
        return added;
    }
    [[nodiscard]] bool empty() const { return m_objects.empty(); }
    [[nodiscard]] auto begin() const { return m_objects.begin(); }
    [[nodiscard]] auto end() const { return m_objects.end(); }

private:
    std::vector<std::unique_ptr<Object>> m_objects;
    std::unordered_map<std::string_view, Object*> m_index;
};

} // namespace pwr
