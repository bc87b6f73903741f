// What a control-side call could not do. Every call that can fail returns one.
#pragma once

namespace ctrl {

enum class error {
  none,
  out_of_range,  // an index or number outside what the table or platform has
  bad_size,      // a size the platform cannot take
};

}  // namespace ctrl
