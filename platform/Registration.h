// Something that lasts for as long as an object lives. Main thread only.
#pragma once

namespace dormel {

/// Ends what it stands for (an observation, a monitor) when it is destroyed.
class Registration {
 public:
  virtual ~Registration() = default;
};

}  // namespace dormel
