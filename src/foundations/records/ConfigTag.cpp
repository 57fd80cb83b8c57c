#include "foundations/records/ConfigTag.h"

namespace ConfigTag {

Quill::Ptr<ConfigTagStatus> ConfigTagStatus::ConfigTagStatusIs() { return Zel::make<ConfigTagStatus>(); }

Quill::Ptr<ConfigTagIdState> ConfigTagIdState::ConfigTagIdStateIs() { return Zel::make<ConfigTagIdState>(); }

}  // namespace ConfigTag
