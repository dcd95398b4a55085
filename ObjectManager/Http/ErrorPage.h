#pragma once

#include <string_view>

#include "ObjectManager/Http/Response.h"
#include "Platform/Http/TSKHTTPRequest.h"

namespace Http {

/// Whether the field Accept of a request names text/html, as browsers do and programs do not. A
/// client that takes any type does not ask for a page.
///
/// May be called by several threads at once.
[[nodiscard]] bool asksForPage(const TSKHTTPRequest& request);

/// Gives `response`, an error without a body, a page for a browser, which would show an empty
/// window else: its status, a sentence and a link to the start page. `path` is that of the request,
/// and begins with a slash. The other fields of the response stay. Nothing may be sent yet.
/// Errors: std::bad_alloc.
///
/// May be called by several threads at once.
void addErrorPage(Response& response, std::string_view path);

}  // namespace Http
