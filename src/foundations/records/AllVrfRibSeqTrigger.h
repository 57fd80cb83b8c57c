// Routing::Protocol::AllVrfRibSeqTrigger: the VrfRibSeqTrigger of every VRF, owned here and keyed by
// VRF name (collection vrfRibSeqTrigger, id 130; the shape is AllVrfRecords.h's). Created by the
// hosting agent (allVrfRibSeqTriggerFactory()) and handed to the protocol root, which adds and
// deletes a VRF's entry together with its VrfReadyStatus; the RIB side writes the triggers.
#pragma once

#include "foundations/records/AllVrfRecords.h"
#include "foundations/records/VrfRibSeqTrigger.h"

namespace Routing::Protocol {

BOWLINE_ALL_VRF_RECORDS(AllVrfRibSeqTrigger, VrfRibSeqTrigger, vrfRibSeqTrigger, allVrfRibSeqTriggerFactory)

}  // namespace Routing::Protocol
