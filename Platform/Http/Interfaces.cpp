// The destructors of the interfaces stand here, so that each interface has its virtual table and
// its type information in this library alone: casts then work across libraries.

#include "Platform/Http/TSKGenericHTTPIStream.h"
#include "Platform/Http/TSKGenericHTTPOStream.h"

TSKGenericHTTPIStream::~TSKGenericHTTPIStream() = default;
TSKGenericHTTPOStream::~TSKGenericHTTPOStream() = default;
