#pragma once

namespace pwr {

class Parser;

/// Gives every message with operations but without triggers the trigger "INIT", unless it is part of a group.
void addImplicitTriggers(const Parser& parser);

/// Takes these triggers back before further statements are read, which may name others.
void removeImplicitTriggers(const Parser& parser);

/// What can only be judged when all files are read. -1, after an error, when a parent is not declared or a message
/// stands twice in a capability. What is merely suspicious is a warning.
int checkSanity(const Parser& parser);

} // namespace pwr
