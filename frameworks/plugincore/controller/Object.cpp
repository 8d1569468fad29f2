// SPDX-License-Identifier: ISC
#include "frameworks/plugincore/controller/Object.h"

#include <algorithm>
#include <utility>

Object::~Object()
{
    while (!children.empty()) {
        children.pop_back();
    }
}

void Object::Adopt(std::unique_ptr<Object> child)
{
    child->parent = this;
    children.push_back(std::move(child));
}

std::unique_ptr<Object> Object::RemoveChild(const Object& child)
{
    const auto found = std::find_if(children.begin(), children.end(), [&child](const auto& entry) {
        return entry.get() == &child;
    });
    if (found == children.end()) {
        return nullptr;
    }
    std::unique_ptr<Object> removed = std::move(*found);
    children.erase(found);
    removed->parent = nullptr;
    return removed;
}
