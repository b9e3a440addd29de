#pragma once

#include "OrvoPlayListItem.h"
#include "TrackList.h"

// The complete playlist item of an entry on the network, as a playlist stores it.
namespace NetworkItem {

OrvoPlayListItem of(const ListedTrack& track, const QString& address);

} // namespace NetworkItem
