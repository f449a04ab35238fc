#pragma once

#include <cstdint>
#include <string>

namespace quorvale::model {

/// One allowed connection. Held by `std::shared_ptr`, so that a change made by one holder is seen by all; one thread
/// at a time.
class AllowedClass {
public:
    AllowedClass(std::string address, std::string name, std::string land, double seconds, double julianDate,
                 std::int64_t remotePort, std::int32_t sent, std::int16_t count);

    AllowedClass(const AllowedClass&) = delete;
    AllowedClass& operator=(const AllowedClass&) = delete;

    std::string ipAddress; ///< the remote address, as text
    std::string dnsName;
    std::string country;
    double timeStamp; ///< seconds since 1970-01-01 00:00 UTC
    double julian;    ///< the same moment as a Julian date: days since noon UTC of -4713-11-24
    std::int64_t port;
    std::int32_t bytesOut; ///< bytes sent
    std::int16_t requests; ///< number of requests
};

} // namespace quorvale::model
