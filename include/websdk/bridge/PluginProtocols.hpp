#pragma once
/// @file
/// Every family's plugin protocol and the traffic listener at once. A host that
/// serves one family includes only that family's header, websdk/bridge/families/.

#include "websdk/bridge/Families.hpp"
#include "websdk/bridge/WebSDKJSCommunicationProtocol.hpp"
