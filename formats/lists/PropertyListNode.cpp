#include "formats/lists/PropertyListNode.h"

#include <algorithm>
#include <cmath>

namespace dubrix {

namespace {

using Node = PropertyListNode;

std::vector<const Node::Entry*> sortedByKey(const Node::Dictionary& dictionary) {
    std::vector<const Node::Entry*> entries;
    entries.reserve(dictionary.size());
    for (const Node::Entry& entry : dictionary)
        entries.push_back(&entry);
    std::sort(entries.begin(), entries.end(),
              [](const auto* left, const auto* right) { return left->key < right->key; });
    return entries;
}

struct Comparison {
    bool operator()(const Node::Null&, const Node::Null&) const { return true; }
    bool operator()(double left, double right) const {
        return left == right || (std::isnan(left) && std::isnan(right));
    }
    bool operator()(const Node::Data& left, const Node::Data& right) const {
        return left.bytes == right.bytes;
    }
    bool operator()(const Node::Date& left, const Node::Date& right) const {
        return (*this)(left.secondsSince2001, right.secondsSince2001);
    }
    bool operator()(const Node::Uid& left, const Node::Uid& right) const {
        return left.value == right.value;
    }
    bool operator()(const Node::Array& left, const Node::Array& right) const {
        return std::equal(left.begin(), left.end(), right.begin(), right.end(), equal);
    }
    bool operator()(const Node::Dictionary& left, const Node::Dictionary& right) const {
        auto lefts = sortedByKey(left);
        auto rights = sortedByKey(right);
        return std::equal(lefts.begin(), lefts.end(), rights.begin(), rights.end(),
                          [](const auto* one, const auto* other) {
                              return one->key == other->key && equal(one->value, other->value);
                          });
    }
    template<class T>
    bool operator()(const T& left, const T& right) const {
        return left == right;
    }
    template<class T, class U>
    bool operator()(const T&, const U&) const {
        return false;
    }
};

} // namespace

std::size_t PropertyListDictionaryBuilder::indexOf(const std::string& key) {
    if (entries_.size() <= fewKeys) {
        const auto place = std::find_if(entries_.begin(), entries_.end(),
                                        [&](const auto& entry) { return entry.key == key; });
        return static_cast<std::size_t>(place - entries_.begin());
    }
    if (indexes_.empty())
        for (std::size_t index = 0; index < entries_.size(); ++index)
            indexes_.emplace(entries_[index].key, index);
    return indexes_.try_emplace(key, entries_.size()).first->second;
}

PropertyListNode& PropertyListDictionaryBuilder::put(std::string key) {
    if (indexOf(key) != entries_.size())
        return repeated_ = {};
    entries_.push_back({std::move(key), {}});
    return entries_.back().value;
}

bool equal(const PropertyListNode& left, const PropertyListNode& right) {
    return std::visit(Comparison{}, left.value, right.value);
}

} // namespace dubrix
