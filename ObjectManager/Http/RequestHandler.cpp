#include "ObjectManager/Http/RequestHandler.h"

namespace Http {

RequestHandler::~RequestHandler() = default;

}  // namespace Http
