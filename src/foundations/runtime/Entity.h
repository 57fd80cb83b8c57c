// Zel::Entity: a reference-counted object with one publisher: the base of records and state
// machines. A publish holds a strong reference to the entity, so that a reactor may drop the last
// other reference without destroying the publisher under the running publish.
#pragma once

#include "foundations/runtime/Ptr.h"
#include "foundations/runtime/Publisher.h"

namespace Zel {

class Entity : public PtrInterface {
 public:
  [[nodiscard]] Quill::Publisher& publisher() const noexcept { return publisher_; }

  void publish(AttrId attributeId, void const* key = nullptr) const {
    if (!publisher_.hasSubscribers()) return;
    if (references() == 0) {  // still in its constructor: nobody can drop it yet
      publisher_.publishChange(attributeId, key);
      return;
    }
    Quill::Ptr<Entity const> hold(this);
    publisher_.publishChange(attributeId, key);
  }

 protected:
  Entity() noexcept = default;
  ~Entity() override = default;

 private:
  mutable Quill::Publisher publisher_;
};

}  // namespace Zel
