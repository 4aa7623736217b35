#pragma once

#include "FeatureDocument.h"
#include "FeatureListModel.h"
#include "MeasureScene.h"
#include "MeshLoader.h"
#include "Tool.h"
#include "ViewerSettings.h"

#include <QHash>
#include <QMainWindow>

#include <functional>
#include <vector>

class QActionGroup;
class QLabel;
class QMenu;
class QProgressBar;
class QTableView;

namespace viewer {
class Measuring;
class ViewportWidget;

/// The window of the program: menus, tool bars, the list and the view.
class MainWindow : public QMainWindow
{
    Q_OBJECT

public:
    explicit MainWindow(QWidget* parent = nullptr);
    ~MainWindow() override;

    /// @name Files; all but the mesh, which is read in the background, are done when the call returns
    /// @{

    /// @param features file of features to open once the mesh is shown; empty for none
    void openMesh(const QString& path, const QString& features = {});
    bool openFeatures(const QString& path);
    bool saveFeatures(const QString& path);
    /// @}

    void setLanguage(QLocale::Language language);
    void setSettings(const ViewerSettings& settings);

    FeatureDocument& document() { return m_document; }
    MeasureScene& scene() { return m_scene; }
    ViewportWidget& viewport() { return *m_viewport; }
    QTableView& list() { return *m_list; }
    Measuring& measuring() { return *m_measuring; }

signals:
    void meshShown();

protected:
    void closeEvent(QCloseEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    void buildList();
    void buildStatusBar();
    void buildFileMenu();
    void buildEditMenu();
    void buildToolsMenu();
    void buildViewMenu();
    void buildHelpMenu();
    void buildToolBar();
    QAction* addAction(QMenu& menu, const QString& text, const QKeySequence& shortcut, const QString& tip,
                       const std::function<void()>& slot);
    void addToolAction(QMenu& menu, ToolKind tool, const QString& text, const QString& shortcut, const QString& tip);

    void showMesh(const QString& path, const LoadedMesh& mesh);
    void askForMesh();
    void askForFeatures();
    bool save();
    bool saveAs();
    bool mayDiscardChanges();
    void exportCsv();
    void takeScreenshot();
    void editSettings();
    void copyCoordinates();
    void deleteSelected();
    void flyToSelected();
    void renameSelected();
    std::vector<int> selectedRows() const;

    void addRecentFile(const QString& path);
    void showRecentFiles();
    void openAny(const QString& path);
    void updateTitle();
    void updateTools();
    void updateActions();
    void scrollToSelected();
    void tellFailure(const QString& what, const QString& path, const QString& error);

    ViewerSettings m_settings;
    MeasureScene m_scene;
    FeatureDocument m_document{m_scene};
    FeatureListModel m_model{m_document};
    MeshLoader m_loader;
    ViewportWidget* m_viewport;
    Measuring* m_measuring = nullptr;
    QTableView* m_list = nullptr;
    QLabel* m_hint = nullptr;
    QLabel* m_coordinates = nullptr;
    QProgressBar* m_progress = nullptr;
    QMenu* m_recentFiles = nullptr;
    QHash<int, QAction*> m_toolActions; // by ToolKind
    QHash<int, QAction*> m_showActions; // by featureType
    QList<QAction*> m_selectionActions; // usable while something is selected
    QList<QAction*> m_barActions;       // in the order of the tool bar, null for a separator
    QActionGroup* m_toolGroup = nullptr;
    QString m_meshName;
    QString m_featuresToOpen; // once the mesh is shown
};

} // namespace viewer
