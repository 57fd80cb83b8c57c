// Routing::Protocol::AllVrfReadyStatus: the VrfReadyStatus of every VRF, owned here and keyed by VRF
// name (collection vrfReadyStatus, id 130; the shape is AllVrfRecords.h's). Created by the hosting
// agent (allVrfReadyStatusFactory()) and handed to the protocol root, which adds a VRF's entry when
// the VRF gets an id and deletes it when the VRF loses it.
#pragma once

#include "foundations/records/AllVrfRecords.h"
#include "foundations/records/VrfReadyStatus.h"

namespace Routing::Protocol {

BOWLINE_ALL_VRF_RECORDS(AllVrfReadyStatus, VrfReadyStatus, vrfReadyStatus, allVrfReadyStatusFactory)

}  // namespace Routing::Protocol
