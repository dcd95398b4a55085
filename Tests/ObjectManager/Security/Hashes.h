#pragma once

#include <string>
#include <string_view>

#include "ObjectManager/Security/PasswordHash.h"

/// Hashing that takes less than a millisecond, for tests alone.
inline const Security::PasswordHashOptions kCheapHashing = {.method = "$6$", .cost = 1000};

/// A new hash by it.
inline std::string cheapHash(std::string_view password) {
    return Security::hashPassword(Security::SecretText(password), kCheapHashing);
}

/// As `openssl passwd -6` makes it of the password "secret".
constexpr const char* kSha512OfSecret =
    "$6$saltsalt$TVLlQcbpFVof5W3Yz4DTP6gRstiNuHwwTt6GLc1E5n0U0aDehy0S5knV8wiOQSpT0Y77vwPZN.Pq."
    "H91p5hVO1";

/// The password "secret" by every method of crypt(5) whose hashes begin with "$".
constexpr const char* kHashesOfSecret[] = {
    kSha512OfSecret,
    "$y$j75$8H9KHZoPMzpneAMcbCyJs1$sun7whClJtY5OgOhMtamClEmEoJpYww0rPZyjDAyKID",
    "$gy$j75$4OSS8uJPAgrtgDld5QVhZ/$48cka.2EuCGUyctAwpzjcS7ux3145YQe6rFlyspWe2.",
    "$7$BU..../....QUwgOEOXNNebiw26viCiZ1$9WQWD4HtDsbcxGQ.Nbk.RKXZGAJUSd/r2UYI6sKqpTC",
    "$2b$04$2lxZsJ1DWxtVX5VA3GmiYet1JBjoHFvykDZcPSxbW299RtcORAhbe",
    "$2a$04$kLehDfqnvdruY8TQnspTB.OPEHGse.m5KwloEiuDN93ANhV37QNPS",
    "$2y$04$my7yLTU0e.tVdiXVoaNo7.iqKvSM.UCv4q.iMUMSvlygqwLzalwDe",
    "$2x$04$2lxZsJ1DWxtVX5VA3GmiYet1JBjoHFvykDZcPSxbW299RtcORAhbe",
    "$5$saltsalt$0IyaXrmV7.sGNS6tirgqHLqX/G.FBvgkYA.lpPdS5sA",
    "$sha1$4$CP6NEY/MVFx2SQX9kNhq$XkHNNoesbVZ7oTMOr8c1SOy2ZZ.X",
    "$md5,rounds=82935$bRNMCSMK$$gKTftV1WmEXVLtXPbS9xo.",
    "$1$saltsalt$9xy1btjgzLYfb7hivXtC//",
};
