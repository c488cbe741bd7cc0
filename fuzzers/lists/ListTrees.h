#pragma once

#include "formats/lists/PropertyListNode.h"
#include "fuzzers/Mutation.h"

namespace dubrix::fuzz {

/// A value of any type with a few levels below it.
PropertyListNode anyTree(Random& random, int levels = 3);

/// The tree with one value somewhere in it changed, taken away, doubled or put one level lower.
void changeTree(PropertyListNode& root, Random& random);

/// Values that between them have every type and what is special about each.
std::vector<PropertyListNode> sampleTrees();

} // namespace dubrix::fuzz
