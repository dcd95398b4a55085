#pragma once

#include "ObjectManager/Http/Answer.h"
#include "ObjectManager/Http/Refusal.h"

namespace Http {

/// The answer that tells the client of a refusal: its sentence as plain text, left out with
/// `headOnly`.
[[nodiscard]] Answer answerOf(const Refusal& refusal, bool headOnly);

/// The answer to a caller who is not authenticated: 401, asks for a name and a password (RFC 7617),
/// and tells nothing else.
[[nodiscard]] Answer makeChallenge();

}  // namespace Http
