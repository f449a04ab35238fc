#pragma once

namespace quorvale::model {

class IPHelper {
public:
    IPHelper() = default;
    IPHelper(const IPHelper&) = delete;
    IPHelper& operator=(const IPHelper&) = delete;
};

} // namespace quorvale::model
