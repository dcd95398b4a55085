#pragma once

#include <string>

/// `response` without the line "Date: ..." behind its status line. Fails the test when there is
/// none, it is malformed, or its time is not about now.
[[nodiscard]] std::string withoutDate(const std::string& response);
