#pragma once

#include "ObjectManager/Repository/ClassRepository.h"

/// Reads every definition of a repository as a provider does, down to the values of qualifiers, and
/// requires that what it is told fits together.
void readBack(const Repository::ClassRepository& repository);
