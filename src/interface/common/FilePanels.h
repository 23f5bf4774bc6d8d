// What all file panels have in common.
#pragma once

class QFileDialog;

namespace kestrin {

/// The toolkit's own panel, which changes no files and whose every control says what it is for. Its
/// own questions, and what else it can do to files, would wait in event loops of their own.
void SetUpFilePanel(QFileDialog& panel);

}  // namespace kestrin
