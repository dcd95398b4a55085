#pragma once

class TSKGenericHTTPIStream {};
