#pragma once

namespace quorvale::model {

class IPHelper {};

} // namespace quorvale::model
