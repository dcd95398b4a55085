#pragma once

#include <gtest/gtest.h>
#include <string>

#include "ObjectManager/Loading/RepositoryLoader.h"
#include "Tests/Support/MofDirectory.h"
#include "Tests/Support/RepositoryText.h"

/// Loads the classes of a text into the namespace "root/test". The qualifiers of the text may be
/// Key and Note (ToSubclass), Version (Restricted), Plain (without flavors), Values (an array of
/// strings), and Description.
class RepositoryTest : public testing::Test {
  protected:
    /// Expects that nothing is wrong.
    TSKSmrPtr<Repository::ClassRepository> load(const std::string& mof,
                                                const Repository::Options& options = {}) const;

    /// As load(); one class of it, which keeps alive what it needs.
    TSKSmrPtr<ITeskClass> classOf(const std::string& mof, const char* name,
                                  const Repository::Options& options = {}) const;

    MofDirectory directory_;
};

/// The order of declaration.
inline constexpr Repository::Options kAsDeclared = {.propertyOrder =
                                                        Repository::PropertyOrder::kDeclaration};
