#pragma once

#include <cstddef>
#include <filesystem>

/// Writes MOF files of `count` classes into a directory, in the shape of a real schema: a file a
/// class and one that includes them all, five properties and a method each, descriptions of a few
/// lines, ValueMaps with their Values, and superclasses five levels deep. The classes are TST_0,
/// TST_1 and so on. Returns the file that includes the others. Errors: std::ios_base::failure when
/// a file cannot be written.
std::filesystem::path writeGeneratedModel(const std::filesystem::path& directory,
                                          std::size_t count);
