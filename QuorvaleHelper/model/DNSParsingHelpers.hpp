#pragma once

namespace quorvale::model {

class DNSParsingHelpers {};

} // namespace quorvale::model
