// SPDX-License-Identifier: MIT

#include "pages/OncePage.h"

#include <KXFoundation/UI/OS_dispatch_queue.h>

#include "Gallery.h"
#include "PushButton.h"

namespace gallery {

using namespace kx;

namespace {

struct Row {
    std::string_view key;
    std::string_view token;
    int calls = 0;
    int runs = 0;
};

/// As long-lived as the tokens themselves.
std::span<Row> rows() {
    static Row all[] = {
        {"once.composed", "caf\u00E9"},
        {"once.decomposed", "cafe\u0301"},
        {"once.capital", "CAF\u00C9"},
    };
    return all;
}

void call(Row& row) {
    ++row.calls;
    OS_dispatch_queue::once(row.token, [&] { ++row.runs; });
}

}  // namespace

void OncePage::build(Column& column, Gallery& gallery) {
    column.title(text("once.title"));
    column.paragraph(text("once.explanation"));
    for (Row& row : rows()) {
        if (row.calls == 0) call(row);
        column.caption(text(row.key));
        column.pair(text("once.calls"), std::to_string(row.calls));
        column.pair(text("once.runs"), std::to_string(row.runs));
        column.row({pushButton("once.call", [&row, &gallery] {
            call(row);
            gallery.rebuild();
        })});
    }
}

}  // namespace gallery
