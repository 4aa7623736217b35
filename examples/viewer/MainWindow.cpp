#include "MainWindow.h"

#include "FeatureFile.h"
#include "Icons.h"
#include "LabelLanguage.h"
#include "Measuring.h"
#include "SettingsDialog.h"
#include "ViewportWidget.h"

#include <QActionGroup>
#include <QApplication>
#include <QClipboard>
#include <QCloseEvent>
#include <QDir>
#include <QDockWidget>
#include <QDragEnterEvent>
#include <QFileDialog>
#include <QFileInfo>
#include <QHeaderView>
#include <QLabel>
#include <QMenuBar>
#include <QMessageBox>
#include <QMimeData>
#include <QProgressBar>
#include <QSettings>
#include <QStatusBar>
#include <QTableView>
#include <QToolBar>

#include <algorithm>
#include <utility>

namespace viewer {

using namespace KelvOsgTools;

namespace {

constexpr int kRecentFiles = 8;
constexpr int kMessageMilliseconds = 6000;
constexpr float kFlyToShare = 0.35f; // of the radius around the scene, shown around a feature

const QString kRecentKey = QStringLiteral("recentFiles");
const QString kFeatureFilter = QStringLiteral("Features (*.xml);;All files (*)");

bool isFeatureFile(const QString& path)
{
    return QFileInfo(path).suffix().compare(QLatin1String("xml"), Qt::CaseInsensitive) == 0;
}

/// The stored settings, which must be in force before anything is built.
ViewerSettings appliedSettings(double pixelRatio)
{
    ViewerSettings settings = ViewerSettings::load();
    settings.apply(pixelRatio);
    return settings;
}

} // namespace

MainWindow::MainWindow(QWidget* parent)
    : QMainWindow(parent), m_settings(appliedSettings(devicePixelRatioF())), m_viewport(new ViewportWidget(m_scene))
{
    setCentralWidget(m_viewport);
    setAcceptDrops(true);
    setWindowIcon(iconOf(Symbol::Program));
    buildList();
    m_measuring = new Measuring(*m_viewport, m_document, *m_list->selectionModel(), this);
    buildFileMenu();
    buildEditMenu();
    buildToolsMenu();
    buildViewMenu();
    buildHelpMenu();
    buildToolBar();
    buildStatusBar();

    connect(m_measuring, &Measuring::toolChanged, this, &MainWindow::updateTools);
    connect(m_measuring, &Measuring::pointed, this, [this](const QString& text) {
        m_coordinates->setText(text.isEmpty() ? QString() : tr("x, y, z:  %1").arg(text));
    });
    connect(m_measuring, &Measuring::reported, this,
            [this](const QString& message) { statusBar()->showMessage(message, kMessageMilliseconds); });
    connect(&m_document, &FeatureDocument::pathChanged, this, &MainWindow::updateTitle);
    connect(&m_document.undoStack(), &QUndoStack::cleanChanged, this, &MainWindow::updateTitle);
    connect(&m_loader, &MeshLoader::loaded, this, &MainWindow::showMesh);
    connect(&m_loader, &MeshLoader::progressed, this, [this](int percent) {
        m_progress->setRange(0, percent > 0 ? 100 : 0); // nothing is known about how far the reading is
        m_progress->setValue(percent);
        m_progress->show();
    });
    updateTitle();
    updateTools();
    updateActions();
    resize(1280, 800);
    restoreGeometry(QSettings().value(QStringLiteral("geometry")).toByteArray());
    restoreState(QSettings().value(QStringLiteral("state")).toByteArray());
}

MainWindow::~MainWindow() = default;

void MainWindow::buildList()
{
    m_list = new QTableView;
    m_list->setModel(&m_model);
    m_list->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_list->setEditTriggers(QAbstractItemView::EditKeyPressed);
    m_list->setAlternatingRowColors(true);
    m_list->setShowGrid(false);
    m_list->setWordWrap(false);
    m_list->verticalHeader()->hide();
    m_list->verticalHeader()->setDefaultSectionSize(m_list->fontMetrics().height() + 8);
    m_list->horizontalHeader()->setHighlightSections(false);
    m_list->horizontalHeader()->setStretchLastSection(true);
    const QVector<int> widths{70, 72, 80, 124};
    for (int column = 0; column < widths.size(); ++column) m_list->setColumnWidth(column, widths[column]);
    m_list->setToolTip(tr("Double-click to fly to a feature, F2 to rename its label"));

    auto* const dock = new QDockWidget(tr("Features"));
    dock->setObjectName(QStringLiteral("features"));
    dock->setWidget(m_list);
    addDockWidget(Qt::RightDockWidgetArea, dock);
    resizeDocks({dock}, {470}, Qt::Horizontal);

    connect(m_list, &QTableView::doubleClicked, this, &MainWindow::flyToSelected);
    connect(m_list->selectionModel(), &QItemSelectionModel::selectionChanged, this, [this] {
        updateActions();
        scrollToSelected();
    });
}

void MainWindow::buildStatusBar()
{
    m_hint = new QLabel;
    m_coordinates = new QLabel;
    m_coordinates->setObjectName(QStringLiteral("coordinates"));
    m_progress = new QProgressBar;
    m_progress->setMaximumWidth(180);
    m_progress->hide();
    statusBar()->addWidget(m_hint, 1);
    statusBar()->addPermanentWidget(m_progress);
    statusBar()->addPermanentWidget(m_coordinates);
}

QAction* MainWindow::addAction(QMenu& menu, const QString& text, const QKeySequence& shortcut, const QString& tip,
                               const std::function<void()>& slot)
{
    QAction* const action = menu.addAction(text, this, slot, shortcut);
    action->setStatusTip(tip);
    const QString key =
        shortcut.isEmpty() ? QString() : QStringLiteral(" (%1)").arg(shortcut.toString(QKeySequence::NativeText));
    action->setToolTip(tip + key);
    return action;
}

void MainWindow::buildFileMenu()
{
    QMenu& menu = *menuBar()->addMenu(tr("&File"));
    QAction* const mesh =
        addAction(menu, tr("Open &Mesh..."), tr("Ctrl+M"), tr("Open a mesh to measure"), [this] { askForMesh(); });
    mesh->setIcon(iconOf(Symbol::OpenMesh));
    mesh->setIconText(tr("Mesh"));
    QAction* const open = addAction(menu, tr("&Open Features..."), QKeySequence::Open, tr("Open a file of features"),
                                    [this] { askForFeatures(); });
    open->setIcon(iconOf(Symbol::OpenFeatures));
    open->setIconText(tr("Open"));
    m_recentFiles = menu.addMenu(tr("&Recent Files"));
    showRecentFiles();
    menu.addSeparator();
    QAction* const saved =
        addAction(menu, tr("&Save Features"), QKeySequence::Save, tr("Save all features"), [this] { save(); });
    saved->setIcon(iconOf(Symbol::Save));
    saved->setIconText(tr("Save"));
    addAction(menu, tr("Save Features &As..."), QKeySequence::SaveAs, tr("Save all features to another file"),
              [this] { saveAs(); });
    menu.addSeparator();
    addAction(menu, tr("Export List as &CSV..."), tr("Ctrl+E"), tr("Write the list for a spreadsheet"),
              [this] { exportCsv(); });
    addAction(menu, tr("Save Scr&eenshot..."), tr("Ctrl+P"), tr("Save a picture of the view"),
              [this] { takeScreenshot(); });
    menu.addSeparator();
    addAction(menu, tr("&Quit"), QKeySequence::Quit, tr("Close the program"), [this] { close(); });
    m_barActions << mesh << open << saved << nullptr;
}

void MainWindow::buildEditMenu()
{
    QMenu& menu = *menuBar()->addMenu(tr("&Edit"));
    QAction* const undo = m_document.undoStack().createUndoAction(this, tr("&Undo"));
    undo->setShortcut(QKeySequence::Undo);
    undo->setIcon(iconOf(Symbol::Undo));
    undo->setIconText(tr("Undo"));
    QAction* const redo = m_document.undoStack().createRedoAction(this, tr("&Redo"));
    redo->setShortcut(QKeySequence::Redo);
    redo->setIcon(iconOf(Symbol::Redo));
    redo->setIconText(tr("Redo"));
    menu.addActions({undo, redo});
    menu.addSeparator();
    m_selectionActions << addAction(menu, tr("&Copy Coordinates"), QKeySequence::Copy,
                                    tr("Copy the coordinates of the selected features"), [this] { copyCoordinates(); });
    m_selectionActions << addAction(menu, tr("Re&name Label"), tr("F2"), tr("Change the label of the selected feature"),
                                    [this] { renameSelected(); });
    m_selectionActions << addAction(menu, tr("&Delete"), QKeySequence::Delete, tr("Delete the selected features"),
                                    [this] { deleteSelected(); });
    addAction(menu, tr("Select &All"), QKeySequence::SelectAll, tr("Select all features"),
              [this] { m_list->selectAll(); });
    addAction(menu, tr("Step &Back"), tr("Esc"), tr("Forget the clicked points, the tool or the selection"),
              [this] { m_measuring->cancel(); });
    menu.addSeparator();
    addAction(menu, tr("Se&ttings..."), tr("Ctrl+,"), tr("Choose colours and fonts"), [this] { editSettings(); });
    m_barActions << undo << redo << nullptr;
}

void MainWindow::addToolAction(QMenu& menu, ToolKind tool, const QString& text, const QString& shortcut,
                               const QString& tip)
{
    QAction* const action = addAction(menu, text, shortcut, tip, [this, tool] { m_measuring->chooseTool(tool); });
    action->setIcon(iconOf(tool));
    action->setCheckable(true);
    m_toolGroup->addAction(action);
    m_toolActions[int(tool)] = action;
    m_barActions << action;
}

void MainWindow::buildToolsMenu()
{
    QMenu& menu = *menuBar()->addMenu(tr("&Measure"));
    m_toolGroup = new QActionGroup(this);
    addToolAction(menu, ToolKind::Select, tr("&Select"), tr("S"), tr("Select features"));
    addToolAction(menu, ToolKind::Dot, tr("&Dot"), tr("D"), tr("Mark a point: one click"));
    addToolAction(menu, ToolKind::Line, tr("&Line"), tr("L"), tr("Measure a distance: two clicks"));
    addToolAction(menu, ToolKind::SolidLine, tr("S&olid Line"), tr("Shift+L"),
                  tr("Measure a distance with a solid arrow: two clicks"));
    addToolAction(menu, ToolKind::Plane, tr("&Plane"), tr("P"), tr("Lay a plane through the mesh: three clicks"));
    m_barActions << nullptr;
}

void MainWindow::buildViewMenu()
{
    QMenu& menu = *menuBar()->addMenu(tr("&View"));
    QAction* const fit = addAction(menu, tr("&Fit"), tr("F"), tr("Show everything"), [this] { m_viewport->fit(); });
    fit->setIcon(iconOf(Symbol::Fit));
    addAction(menu, tr("Fly to &Selection"), tr("Space"), tr("Come close to the selected feature"),
              [this] { flyToSelected(); });
    QAction* const parallel = addAction(menu, tr("&Parallel Projection"), tr("O"),
                                        tr("Switch between perspective and parallel projection"), [] {});
    parallel->setIcon(iconOf(Symbol::Perspective));
    parallel->setIconText(tr("Parallel"));
    parallel->setCheckable(true);
    connect(parallel, &QAction::toggled, m_viewport, &ViewportWidget::setOrthographic);
    menu.addSeparator();

    using Direction = OrbitCamera::Direction;
    const QVector<QPair<QString, Direction>> directions{
        {tr("F&ront"), Direction::Front},        {tr("&Back"), Direction::Back}, {tr("&Left"), Direction::Left},
        {tr("Ri&ght"), Direction::Right},        {tr("&Top"), Direction::Top},   {tr("Botto&m"), Direction::Bottom},
        {tr("&Isometric"), Direction::Isometric}};
    for (int i = 0; i < directions.size(); ++i)
        addAction(menu, directions[i].first, QString::number(i + 1), tr("Look from a standard direction"),
                  [this, direction = directions[i].second] { m_viewport->lookFrom(direction); });
    menu.addSeparator();

    const QVector<QPair<QString, featureType>> kinds{
        {tr("Show &Dots"), featureDot}, {tr("Show Li&nes"), featureLine}, {tr("Show Pl&anes"), featurePlane}};
    for (int i = 0; i < kinds.size(); ++i) {
        QAction* const action = addAction(menu, kinds[i].first, QStringLiteral("Ctrl+%1").arg(i + 1),
                                          tr("Show or hide the features of this kind"), [] {});
        action->setCheckable(true);
        action->setChecked(true);
        connect(action, &QAction::toggled, this,
                [this, kind = kinds[i].second](bool on) { m_scene.setKindVisible(kind, on); });
        m_showActions[kinds[i].second] = action;
    }
    menu.addSeparator();

    QMenu& languages = *menu.addMenu(tr("Label Lan&guage"));
    auto* const group = new QActionGroup(this);
    for (const QLocale::Language language : labelLanguages()) {
        QAction* const action = addAction(languages, labelLanguageName(language), {}, tr("Language of the labels"),
                                          [this, language] { setLanguage(language); });
        action->setCheckable(true);
        action->setChecked(language == m_settings.language);
        group->addAction(action);
    }
    m_barActions << fit << parallel;
}

void MainWindow::buildHelpMenu()
{
    QMenu& menu = *menuBar()->addMenu(tr("&Help"));
    addAction(menu, tr("&Mouse and Keys"), QKeySequence::HelpContents, tr("What the mouse and the keys do"), [this] {
        QMessageBox::information(this, tr("Mouse and Keys"),
                                 tr("<table cellpadding=3>"
                                    "<tr><td><b>Left drag</b></td><td>turn the view</td></tr>"
                                    "<tr><td><b>Middle or right drag, Shift + left drag</b></td><td>shift it</td></tr>"
                                    "<tr><td><b>Wheel</b></td><td>zoom to the cursor</td></tr>"
                                    "<tr><td><b>Click</b></td><td>select a feature or place a point</td></tr>"
                                    "<tr><td><b>Ctrl + click</b></td><td>select several features</td></tr>"
                                    "<tr><td><b>D, L, Shift+L, P</b></td><td>dot, line, solid line, plane</td></tr>"
                                    "<tr><td><b>Esc</b></td><td>forget the clicked points, then the tool</td></tr>"
                                    "<tr><td><b>F, Space</b></td><td>show everything, fly to the selection</td></tr>"
                                    "<tr><td><b>1 to 7, O</b></td><td>standard views, parallel projection</td></tr>"
                                    "</table>"));
    });
    addAction(menu, tr("&About"), {}, tr("About this program"), [this] {
        QMessageBox::about(this, tr("About"),
                           tr("<b>%1 %2</b><p>Measures meshes with the annotations of KelvOsgTools.</p>")
                               .arg(QCoreApplication::applicationName(), QCoreApplication::applicationVersion()));
    });
}

void MainWindow::buildToolBar()
{
    QToolBar* const bar = addToolBar(tr("Tools"));
    bar->setObjectName(QStringLiteral("tools"));
    bar->setToolButtonStyle(Qt::ToolButtonTextUnderIcon);
    bar->setMovable(false);
    for (QAction* const action : m_barActions)
        if (action)
            bar->addAction(action);
        else
            bar->addSeparator();
}

void MainWindow::openMesh(const QString& path, const QString& features)
{
    m_featuresToOpen = features;
    statusBar()->showMessage(tr("Loading %1...").arg(QFileInfo(path).fileName()));
    m_loader.load(path);
}

void MainWindow::showMesh(const QString& path, const LoadedMesh& mesh)
{
    m_progress->hide();
    statusBar()->clearMessage();
    if (!mesh.node) {
        tellFailure(tr("The mesh could not be read."), path, mesh.error);
        return;
    }
    // Features belong to the mesh on which they were made.
    if (!mayDiscardChanges()) return;
    m_measuring->chooseTool(ToolKind::Select);
    m_document.clear();
    m_scene.setMesh(mesh.node);
    m_meshName = QFileInfo(path).fileName();
    m_viewport->fit();
    addRecentFile(path);
    updateTitle();
    statusBar()->showMessage(tr("%1: %L2 triangles").arg(m_meshName).arg(mesh.triangles), kMessageMilliseconds);
    if (!m_featuresToOpen.isEmpty()) openFeatures(std::exchange(m_featuresToOpen, {}));
    emit meshShown();
}

bool MainWindow::openFeatures(const QString& path)
{
    if (!mayDiscardChanges()) return false;
    m_measuring->chooseTool(ToolKind::Select);
    QString error;
    if (!m_document.open(path, error)) {
        tellFailure(tr("The features could not be read."), path, error);
        return false;
    }
    if (!m_scene.mesh()) m_viewport->fit();
    addRecentFile(path);
    return true;
}

bool MainWindow::saveFeatures(const QString& path)
{
    QString error;
    if (!m_document.save(path, error)) {
        tellFailure(tr("The features could not be saved."), path, error);
        return false;
    }
    addRecentFile(path);
    statusBar()->showMessage(tr("Saved %1").arg(QFileInfo(path).fileName()), kMessageMilliseconds);
    return true;
}

void MainWindow::askForMesh()
{
    const QString path = QFileDialog::getOpenFileName(
        this, tr("Open Mesh"), {},
        tr("Meshes (*.stl *.ply *.obj *.3ds *.dae *.lwo *.ac *.flt *.osg *.osgt *.osgb *.ive);;All files (*)"));
    if (!path.isEmpty()) openMesh(path);
}

void MainWindow::askForFeatures()
{
    const QString path = QFileDialog::getOpenFileName(this, tr("Open Features"), m_document.path(), kFeatureFilter);
    if (!path.isEmpty()) openFeatures(path);
}

bool MainWindow::save()
{
    return m_document.path().isEmpty() ? saveAs() : saveFeatures(m_document.path());
}

bool MainWindow::saveAs()
{
    QFileDialog dialog(this, tr("Save Features"), m_document.path(), kFeatureFilter);
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setDefaultSuffix(QStringLiteral("xml"));
    return dialog.exec() == QDialog::Accepted && saveFeatures(dialog.selectedFiles().constFirst());
}

bool MainWindow::mayDiscardChanges()
{
    if (!m_document.isModified()) return true;
    const auto answer =
        QMessageBox::question(this, tr("Unsaved Features"), tr("Some features are not saved. Save them now?"),
                              QMessageBox::Save | QMessageBox::Discard | QMessageBox::Cancel, QMessageBox::Save);
    return answer == QMessageBox::Discard || (answer == QMessageBox::Save && save());
}

void MainWindow::exportCsv()
{
    const QString path = QFileDialog::getSaveFileName(this, tr("Export List"), QStringLiteral("features.csv"),
                                                      tr("CSV (*.csv);;All files (*)"));
    QString error;
    if (!path.isEmpty() && !writeCsv(path, m_document.features(), error))
        tellFailure(tr("The list could not be written."), path, error);
}

void MainWindow::takeScreenshot()
{
    const QImage picture = m_viewport->picture();
    const QString path = QFileDialog::getSaveFileName(this, tr("Save Screenshot"), QStringLiteral("screenshot.png"),
                                                      tr("Pictures (*.png *.jpg);;All files (*)"));
    if (!path.isEmpty() && !picture.save(path)) tellFailure(tr("The picture could not be written."), path, {});
}

void MainWindow::editSettings()
{
    SettingsDialog dialog(m_settings, this);
    if (dialog.exec() == QDialog::Accepted) setSettings(dialog.settings());
}

void MainWindow::setSettings(const ViewerSettings& settings)
{
    m_settings = settings;
    m_settings.save();
    m_settings.apply(devicePixelRatioF());
    m_scene.updateLanguage();
    m_model.labelsChanged();
}

void MainWindow::setLanguage(QLocale::Language language)
{
    ViewerSettings settings = m_settings;
    settings.language = language;
    setSettings(settings);
}

void MainWindow::copyCoordinates()
{
    QStringList lines;
    for (const int row : selectedRows())
        for (const osg::Vec3f& point : m_document.features()[std::size_t(row)].points)
            lines << QStringLiteral("%1\t%2\t%3").arg(double(point.x())).arg(double(point.y())).arg(double(point.z()));
    QApplication::clipboard()->setText(lines.join('\n'));
    statusBar()->showMessage(tr("Copied %n point(s)", nullptr, lines.size()), kMessageMilliseconds);
}

void MainWindow::deleteSelected()
{
    m_document.removeRows(selectedRows());
}

void MainWindow::renameSelected()
{
    m_list->setFocus();
    m_list->edit(m_model.index(selectedRows().front(), FeatureListModel::Label));
}

void MainWindow::flyToSelected()
{
    const std::vector<int> rows = selectedRows();
    if (rows.empty()) return;
    const Feature& feature = m_document.features()[std::size_t(rows.front())];
    osg::BoundingSphere around(middleOf(feature), kFlyToShare * m_scene.bound().radius());
    for (const osg::Vec3f& point : feature.points) around.expandRadiusBy(osg::Vec3f(point));
    m_viewport->flyTo(osg::Vec3d(around.center()) * m_scene.matrix(), around.radius());
}

std::vector<int> MainWindow::selectedRows() const
{
    std::vector<int> rows;
    for (const QModelIndex& index : m_list->selectionModel()->selectedRows()) rows.push_back(index.row());
    std::sort(rows.begin(), rows.end());
    return rows;
}

void MainWindow::scrollToSelected()
{
    const std::vector<int> rows = selectedRows();
    if (rows.size() == 1) m_list->scrollTo(m_model.index(rows.front(), 0));
}

void MainWindow::addRecentFile(const QString& path)
{
    QSettings settings;
    QStringList files = settings.value(kRecentKey).toStringList();
    const QString absolute = QFileInfo(path).absoluteFilePath();
    files.removeAll(absolute);
    files.prepend(absolute);
    settings.setValue(kRecentKey, QStringList(files.mid(0, kRecentFiles)));
    showRecentFiles();
}

void MainWindow::showRecentFiles()
{
    m_recentFiles->clear();
    for (const QString& file : QSettings().value(kRecentKey).toStringList())
        addAction(*m_recentFiles, QFileInfo(file).fileName(), {}, file, [this, file] { openAny(file); });
    m_recentFiles->setEnabled(!m_recentFiles->isEmpty());
}

void MainWindow::openAny(const QString& path)
{
    if (isFeatureFile(path))
        openFeatures(path);
    else
        openMesh(path);
}

void MainWindow::updateTitle()
{
    const QString file = m_document.path().isEmpty() ? QString() : QFileInfo(m_document.path()).fileName();
    QStringList parts{m_meshName, file};
    parts.removeAll({});
    if (parts.isEmpty()) parts << tr("no mesh");
    setWindowTitle(
        QStringLiteral("%1[*] - %2").arg(parts.join(QStringLiteral(" - ")), QCoreApplication::applicationName()));
    setWindowModified(m_document.isModified());
}

void MainWindow::updateTools()
{
    const Tool& tool = m_measuring->tool();
    m_toolActions[int(tool.kind())]->setChecked(true);
    m_viewport->setCursor(tool.makesFeatures() ? Qt::CrossCursor : Qt::ArrowCursor);
    // Who makes a feature wants to see it.
    if (QAction* const show = m_showActions.value(tool.featureKind())) show->setChecked(true);
    m_hint->setText(m_scene.mesh() || tool.makesFeatures() ? tool.hint() : tr("Open a mesh or drop one here"));
}

void MainWindow::updateActions()
{
    const bool hasSelection = m_list->selectionModel()->hasSelection();
    for (QAction* const action : m_selectionActions) action->setEnabled(hasSelection);
}

void MainWindow::tellFailure(const QString& what, const QString& path, const QString& error)
{
    QMessageBox box(QMessageBox::Warning, windowTitle(), what, QMessageBox::Ok, this);
    box.setInformativeText(QStringList{QDir::toNativeSeparators(path), error}.join('\n'));
    box.exec();
}

void MainWindow::closeEvent(QCloseEvent* event)
{
    if (!mayDiscardChanges()) {
        event->ignore();
        return;
    }
    QSettings().setValue(QStringLiteral("geometry"), saveGeometry());
    QSettings().setValue(QStringLiteral("state"), saveState());
    event->accept();
}

void MainWindow::dragEnterEvent(QDragEnterEvent* event)
{
    if (event->mimeData()->hasUrls() && event->mimeData()->urls().constFirst().isLocalFile())
        event->acceptProposedAction();
}

void MainWindow::dropEvent(QDropEvent* event)
{
    event->acceptProposedAction();
    openAny(event->mimeData()->urls().constFirst().toLocalFile());
}

} // namespace viewer
