#pragma once

namespace quorvale::model {

class DNSParsingHelpers {
public:
    DNSParsingHelpers() = default;
    DNSParsingHelpers(const DNSParsingHelpers&) = delete;
    DNSParsingHelpers& operator=(const DNSParsingHelpers&) = delete;
};

} // namespace quorvale::model
