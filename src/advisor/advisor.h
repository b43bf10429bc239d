#pragma once

#include "advisor/advisor_ports.h"
#include "advisor/chat.h"
#include "advisor/provider.h"
#include "advisor/rule_drafts.h"
#include "advisor/stored_key.h"
#include "advisor/suggestions.h"
#include "advisor/trust.h"

namespace tallowcrest {

class LatestSample;
class RemoteScan;
class Reports;
struct Actions;
struct Services;

/// The components of the advisor, which explains and proposes. Main thread.
struct Advisor {
    /// The references must outlive the object.
    struct Dependencies {
        const Services& services;
        LatestSample& sample;
        Actions& actions;
        RemoteScan& scan;
        Reports& reports;
        AdvisorPorts ports;
    };

    explicit Advisor(const Dependencies& dependencies);

    StoredKey key;
    Trust trust;
    RuleDrafts drafts;
    Suggestions suggestions;
    Provider provider;
    Chat chat;
};

}  // namespace tallowcrest
