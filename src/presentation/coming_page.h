#pragma once

#include "core/routes.h"
#include "presentation/screen.h"

namespace tallowcrest {

/// One plain line on a route whose screen is still to come. Main thread.
class ComingPage final : public Screen {
    Q_OBJECT

public:
    explicit ComingPage(AppRoute route, QWidget* parent = nullptr);

    void refresh() override {}
};

}  // namespace tallowcrest
