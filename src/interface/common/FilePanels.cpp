#include "interface/common/FilePanels.h"

#include <QComboBox>
#include <QFileDialog>
#include <utility>

namespace kestrin {

void SetUpFilePanel(QFileDialog& panel) {
  panel.setOptions(QFileDialog::DontUseNativeDialog | QFileDialog::DontConfirmOverwrite |
                   QFileDialog::ReadOnly);
  // Screen readers are given the choice as the name of such a menu.
  for (const auto& [name, purpose] :
       {std::pair{"lookInCombo", "Folder"}, {"fileTypeCombo", "File type"}})
    if (auto* menu = panel.findChild<QComboBox*>(name)) menu->setAccessibleDescription(purpose);
}

}  // namespace kestrin
