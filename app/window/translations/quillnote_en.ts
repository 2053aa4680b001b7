<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="en" sourcelanguage="zh_CN">
<context>
    <name>window::CommandLinePanel</name>
    <message>
        <source>命令历史</source>
        <translation>Command history</translation>
    </message>
    <message>
        <source>提示</source>
        <translation>Prompt</translation>
    </message>
    <message>
        <source>命令行</source>
        <translation>Command line</translation>
    </message>
    <message>
        <source>输入命令、选项或坐标；空格或回车确认，Esc 取消</source>
        <translation>Type a command, an option or coordinates; Space or Enter confirms, Esc cancels</translation>
    </message>
    <message>
        <source>展开或收起命令历史 (F2)</source>
        <translation>Show more or less of the command history (F2)</translation>
    </message>
    <message>
        <source>命令</source>
        <translation>Commands</translation>
    </message>
    <message>
        <source>输入命令</source>
        <translation>Type a command</translation>
    </message>
</context>
<context>
    <name>window::DocumentGuard</name>
    <message>
        <source>%1: 接管了 %2 留下的锁定文件。</source>
        <translation>%1: took over the lock file of %2.</translation>
    </message>
    <message>
        <source>%1 正由 %2 编辑，以只读方式打开。</source>
        <translation>%1 is being edited by %2; it was opened read-only.</translation>
    </message>
    <message>
        <source>%1: 文件夹中不能建立锁定文件，他人可能同时编辑。</source>
        <translation>%1: the folder takes no lock file; others may edit at the same time.</translation>
    </message>
    <message>
        <source>打开 %1 时修正了 %2 处损坏。</source>
        <translation>%2 faults were mended while opening %1.</translation>
    </message>
    <message>
        <source>不能恢复图形: %1</source>
        <translation>The drawing cannot be recovered: %1</translation>
    </message>
    <message>
        <source>%1 有一份更新的恢复副本(%2)，其中有未保存的修改。</source>
        <translation>There is a newer recovery copy of %1 (%2) with changes that were not saved.</translation>
    </message>
    <message>
        <source>打开恢复副本(&amp;R)</source>
        <translation>Open &amp;Recovery Copy</translation>
    </message>
    <message>
        <source>打开文件，保留副本(&amp;F)</source>
        <translation>Open &amp;File, Keep Copy</translation>
    </message>
    <message>
        <source>%1 正由 %2 编辑。</source>
        <translation>%1 is being edited by %2.</translation>
    </message>
    <message>
        <source>%1 正由 %2 编辑，不能以原名保存。</source>
        <translation>%1 is being edited by %2 and cannot be saved under its own name.</translation>
    </message>
    <message>
        <source>他人</source>
        <translation>somebody else</translation>
    </message>
    <message>
        <source>以只读方式打开(&amp;R)</source>
        <translation>Open &amp;Read-only</translation>
    </message>
    <message>
        <source>仍然编辑(&amp;E)</source>
        <translation>&amp;Edit Anyway</translation>
    </message>
    <message>
        <source>不能打开图形: %1</source>
        <translation>The drawing cannot be opened: %1</translation>
    </message>
    <message>
        <source>不能保存图形: %1</source>
        <translation>The drawing cannot be saved: %1</translation>
    </message>
    <message>
        <source>另存为(&amp;A)...</source>
        <translation>Save &amp;As...</translation>
    </message>
    <message>
        <source>%1 打开之后，文件已被他人修改。</source>
        <translation>Somebody else has changed the file since %1 was opened.</translation>
    </message>
    <message>
        <source>覆盖他人的修改(&amp;O)</source>
        <translation>&amp;Overwrite Their Changes</translation>
    </message>
    <message>
        <source>图形另存为</source>
        <translation>Save Drawing As</translation>
    </message>
    <message>
        <source>%1 的修改尚未保存。保存修改吗?</source>
        <translation>%1 has changes that are not saved. Save them?</translation>
    </message>
    <message>
        <source>已保存 %1。</source>
        <translation>Saved %1.</translation>
    </message>
    <message>
        <source>不能写恢复副本: %1</source>
        <translation>The recovery copy cannot be written: %1</translation>
    </message>
    <message>
        <source>%1 已被他人修改。重新读取吗?</source>
        <translation>Somebody else has changed %1. Read it again?</translation>
    </message>
    <message>
        <source>重新读取会丢失您未保存的修改。</source>
        <translation>Reading it again loses your unsaved changes.</translation>
    </message>
    <message>
        <source>重新读取(&amp;R)</source>
        <translation>&amp;Read Again</translation>
    </message>
    <message>
        <source>保留我的图形(&amp;K)</source>
        <translation>&amp;Keep My Drawing</translation>
    </message>
</context>
<context>
    <name>window::DocumentTabs</name>
    <message>
        <source>打开的图形</source>
        <translation>Open drawings</translation>
    </message>
    <message>
        <source>尚未保存</source>
        <translation>Not saved yet</translation>
    </message>
    <message>
        <source>%1（只读）</source>
        <translation>%1 (read-only)</translation>
    </message>
    <message>
        <source>%1（已修改）</source>
        <translation>%1 (modified)</translation>
    </message>
</context>
<context>
    <name>window::DrawingView</name>
    <message>
        <source>图形区</source>
        <translation>Drawing area</translation>
    </message>
    <message>
        <source>当前图形。方向键平移，Ctrl 加 + 和 - 缩放，键入的文字进入命令行。</source>
        <translation>The current drawing. Arrow keys pan, Ctrl with + and - zooms, typed text goes to the command line.</translation>
    </message>
    <message>
        <source>重复 %1</source>
        <translation>Repeat %1</translation>
    </message>
    <message>
        <source>移动</source>
        <translation>Move</translation>
    </message>
    <message>
        <source>复制</source>
        <translation>Copy</translation>
    </message>
    <message>
        <source>删除</source>
        <translation>Erase</translation>
    </message>
    <message>
        <source>编辑</source>
        <translation>Edit</translation>
    </message>
    <message>
        <source>放弃</source>
        <translation>Undo</translation>
    </message>
    <message>
        <source>范围缩放</source>
        <translation>Zoom extents</translation>
    </message>
</context>
<context>
    <name>window::FindBar</name>
    <message>
        <source>上一处 (Shift+回车)</source>
        <translation>Previous (Shift+Enter)</translation>
    </message>
    <message>
        <source>下一处 (回车)</source>
        <translation>Next (Enter)</translation>
    </message>
    <message>
        <source>查找:</source>
        <translation>Find:</translation>
    </message>
    <message>
        <source>要查找的文字</source>
        <translation>Text to find</translation>
    </message>
    <message>
        <source>图中的文字</source>
        <translation>Text in the drawing</translation>
    </message>
    <message>
        <source>查找结果</source>
        <translation>Search result</translation>
    </message>
    <message>
        <source>关闭查找栏 (Esc)</source>
        <translation>Close the find bar (Esc)</translation>
    </message>
    <message>
        <source>没有找到</source>
        <translation>Not found</translation>
    </message>
    <message>
        <source>%1 / %2: %3</source>
        <translation>%1 of %2: %3</translation>
    </message>
</context>
<context>
    <name>window::HostMenus</name>
    <message>
        <source>新建(&amp;N)</source>
        <translation>&amp;New</translation>
    </message>
    <message>
        <source>新建图形</source>
        <translation>New drawing</translation>
    </message>
    <message>
        <source>打开(&amp;O)…</source>
        <translation>&amp;Open…</translation>
    </message>
    <message>
        <source>打开图形文件</source>
        <translation>Open a drawing file</translation>
    </message>
    <message>
        <source>最近的文件(&amp;R)</source>
        <translation>&amp;Recent Files</translation>
    </message>
    <message>
        <source>最近打开过的图形</source>
        <translation>Drawings opened last</translation>
    </message>
    <message>
        <source>关闭(&amp;C)</source>
        <translation>&amp;Close</translation>
    </message>
    <message>
        <source>关闭当前图形</source>
        <translation>Close the current drawing</translation>
    </message>
    <message>
        <source>保存(&amp;S)</source>
        <translation>&amp;Save</translation>
    </message>
    <message>
        <source>保存当前图形</source>
        <translation>Save the current drawing</translation>
    </message>
    <message>
        <source>另存为(&amp;A)…</source>
        <translation>Save &amp;As…</translation>
    </message>
    <message>
        <source>以另一个名称保存当前图形</source>
        <translation>Save the current drawing under another name</translation>
    </message>
    <message>
        <source>打印为 PDF(&amp;P)…</source>
        <translation>&amp;Plot to PDF…</translation>
    </message>
    <message>
        <source>把布局或窗口打印到 PDF 文件</source>
        <translation>Plot a layout or a window to a PDF file</translation>
    </message>
    <message>
        <source>退出(&amp;Q)</source>
        <translation>&amp;Quit</translation>
    </message>
    <message>
        <source>退出程序</source>
        <translation>Quit the program</translation>
    </message>
    <message>
        <source>撤销(&amp;U)</source>
        <translation>&amp;Undo</translation>
    </message>
    <message>
        <source>撤销上一步操作</source>
        <translation>Undo the last step</translation>
    </message>
    <message>
        <source>重做(&amp;R)</source>
        <translation>&amp;Redo</translation>
    </message>
    <message>
        <source>重做撤销的操作</source>
        <translation>Redo what was undone</translation>
    </message>
    <message>
        <source>全部选择(&amp;A)</source>
        <translation>Select &amp;All</translation>
    </message>
    <message>
        <source>选择当前空间中的全部可见图元</source>
        <translation>Select everything visible in the current space</translation>
    </message>
    <message>
        <source>删除(&amp;D)</source>
        <translation>&amp;Delete</translation>
    </message>
    <message>
        <source>删除选中的图元</source>
        <translation>Delete the selected entities</translation>
    </message>
    <message>
        <source>查找文字(&amp;F)…</source>
        <translation>&amp;Find Text…</translation>
    </message>
    <message>
        <source>查找图中的文字</source>
        <translation>Find text in the drawing</translation>
    </message>
    <message>
        <source>范围缩放(&amp;E)</source>
        <translation>Zoom &amp;Extents</translation>
    </message>
    <message>
        <source>显示全部图元</source>
        <translation>Show everything</translation>
    </message>
    <message>
        <source>窗口缩放(&amp;W)</source>
        <translation>Zoom &amp;Window</translation>
    </message>
    <message>
        <source>放大由两个角点框住的部分</source>
        <translation>Enlarge the part between two corners</translation>
    </message>
    <message>
        <source>上一个视图(&amp;P)</source>
        <translation>&amp;Previous View</translation>
    </message>
    <message>
        <source>回到前一个视图</source>
        <translation>Go back to the previous view</translation>
    </message>
    <message>
        <source>平移(&amp;N)</source>
        <translation>Pa&amp;n</translation>
    </message>
    <message>
        <source>按两点之间的距离移动视图</source>
        <translation>Move the view by the distance of two points</translation>
    </message>
    <message>
        <source>重生成(&amp;G)</source>
        <translation>Re&amp;generate</translation>
    </message>
    <message>
        <source>重新生成全部图元的显示</source>
        <translation>Draw everything anew</translation>
    </message>
    <message>
        <source>黑白背景(&amp;B)</source>
        <translation>&amp;Black or White Background</translation>
    </message>
    <message>
        <source>在黑色背景与白色背景之间切换</source>
        <translation>Switch between a black and a white background</translation>
    </message>
    <message>
        <source>命令历史(&amp;H)</source>
        <translation>Command &amp;History</translation>
    </message>
    <message>
        <source>展开或收起命令历史</source>
        <translation>Show more or less of the command history</translation>
    </message>
    <message>
        <source>移动(&amp;M)</source>
        <translation>&amp;Move</translation>
    </message>
    <message>
        <source>移动图元</source>
        <translation>Move entities</translation>
    </message>
    <message>
        <source>复制(&amp;C)</source>
        <translation>&amp;Copy</translation>
    </message>
    <message>
        <source>复制图元</source>
        <translation>Copy entities</translation>
    </message>
    <message>
        <source>旋转(&amp;R)</source>
        <translation>&amp;Rotate</translation>
    </message>
    <message>
        <source>绕基点旋转图元</source>
        <translation>Turn entities about a base point</translation>
    </message>
    <message>
        <source>缩放(&amp;S)</source>
        <translation>&amp;Scale</translation>
    </message>
    <message>
        <source>放大或缩小图元</source>
        <translation>Enlarge or reduce entities</translation>
    </message>
    <message>
        <source>镜像(&amp;I)</source>
        <translation>M&amp;irror</translation>
    </message>
    <message>
        <source>沿镜像线翻转图元</source>
        <translation>Mirror entities in a line</translation>
    </message>
    <message>
        <source>删除(&amp;E)</source>
        <translation>&amp;Erase</translation>
    </message>
    <message>
        <source>删除图元</source>
        <translation>Erase entities</translation>
    </message>
    <message>
        <source>直线(&amp;L)</source>
        <translation>&amp;Line</translation>
    </message>
    <message>
        <source>画直线</source>
        <translation>Draw lines</translation>
    </message>
    <message>
        <source>圆(&amp;C)</source>
        <translation>&amp;Circle</translation>
    </message>
    <message>
        <source>按圆心与半径画圆</source>
        <translation>Draw a circle by centre and radius</translation>
    </message>
    <message>
        <source>文字(&amp;T)</source>
        <translation>&amp;Text</translation>
    </message>
    <message>
        <source>写一行文字</source>
        <translation>Write a line of text</translation>
    </message>
    <message>
        <source>下一个图形(&amp;N)</source>
        <translation>&amp;Next Drawing</translation>
    </message>
    <message>
        <source>切换到下一个打开的图形</source>
        <translation>Switch to the next open drawing</translation>
    </message>
    <message>
        <source>上一个图形(&amp;P)</source>
        <translation>&amp;Previous Drawing</translation>
    </message>
    <message>
        <source>切换到上一个打开的图形</source>
        <translation>Switch to the previous open drawing</translation>
    </message>
    <message>
        <source>帮助(&amp;H)</source>
        <translation>&amp;Help</translation>
    </message>
    <message>
        <source>打开帮助</source>
        <translation>Open the help</translation>
    </message>
    <message>
        <source>关于 Quillnote(&amp;A)</source>
        <translation>&amp;About Quillnote</translation>
    </message>
    <message>
        <source>版本与说明</source>
        <translation>Version and description</translation>
    </message>
    <message>
        <source>文件(&amp;F)</source>
        <translation>&amp;File</translation>
    </message>
    <message>
        <source>编辑(&amp;E)</source>
        <translation>&amp;Edit</translation>
    </message>
    <message>
        <source>视图(&amp;V)</source>
        <translation>&amp;View</translation>
    </message>
    <message>
        <source>修改(&amp;M)</source>
        <translation>&amp;Modify</translation>
    </message>
    <message>
        <source>绘图(&amp;D)</source>
        <translation>&amp;Draw</translation>
    </message>
    <message>
        <source>窗口(&amp;W)</source>
        <translation>&amp;Window</translation>
    </message>
    <message>
        <source>移动</source>
        <translation>Move</translation>
    </message>
    <message>
        <source>复制</source>
        <translation>Copy</translation>
    </message>
    <message>
        <source>旋转</source>
        <translation>Rotate</translation>
    </message>
    <message>
        <source>缩放</source>
        <translation>Scale</translation>
    </message>
    <message>
        <source>镜像</source>
        <translation>Mirror</translation>
    </message>
    <message>
        <source>删除</source>
        <translation>Erase</translation>
    </message>
    <message>
        <source>恢复删除</source>
        <translation>Restore erased</translation>
    </message>
    <message>
        <source>直线</source>
        <translation>Line</translation>
    </message>
    <message>
        <source>圆</source>
        <translation>Circle</translation>
    </message>
    <message>
        <source>点</source>
        <translation>Point</translation>
    </message>
    <message>
        <source>文字</source>
        <translation>Text</translation>
    </message>
    <message>
        <source>图层</source>
        <translation>Layer</translation>
    </message>
    <message>
        <source>坐标系</source>
        <translation>Coordinate system</translation>
    </message>
    <message>
        <source>系统变量</source>
        <translation>System variable</translation>
    </message>
    <message>
        <source>编组</source>
        <translation>Group of commands</translation>
    </message>
    <message>
        <source>修改</source>
        <translation>Change</translation>
    </message>
    <message>
        <source>夹点编辑</source>
        <translation>Grip editing</translation>
    </message>
    <message>
        <source>缩放视图</source>
        <translation>Zoom</translation>
    </message>
    <message>
        <source>平移</source>
        <translation>Pan</translation>
    </message>
    <message>
        <source>打开</source>
        <translation>Open</translation>
    </message>
    <message>
        <source>保存</source>
        <translation>Save</translation>
    </message>
    <message>
        <source>打印</source>
        <translation>Plot</translation>
    </message>
    <message>
        <source>列表</source>
        <translation>List</translation>
    </message>
</context>
<context>
    <name>window::LayoutTabs</name>
    <message>
        <source>布局</source>
        <translation>Layouts</translation>
    </message>
    <message>
        <source>模型</source>
        <translation>Model</translation>
    </message>
    <message>
        <source>模型空间</source>
        <translation>Model space</translation>
    </message>
    <message>
        <source>布局 %1</source>
        <translation>Layout %1</translation>
    </message>
</context>
<context>
    <name>window::MainWindow</name>
    <message>
        <source>命令行</source>
        <translation>Command line</translation>
    </message>
    <message>
        <source>打开图形</source>
        <translation>Open Drawing</translation>
    </message>
    <message>
        <source>图形 (*.dxf *.DXF);;所有文件 (*)</source>
        <translation>Drawings (*.dxf *.DXF);;All files (*)</translation>
    </message>
    <message>
        <source>文件 %1 已不存在，已从最近的文件中移除。</source>
        <translation>The file %1 does not exist any more and was removed from the recent files.</translation>
    </message>
    <message>
        <source>帮助</source>
        <translation>Help</translation>
    </message>
    <message>
        <source>&lt;p&gt;打开一张图 (Ctrl+O)，在“评图标签”菜单中选择标签的种类，框住要说明的地方，写下意见。&lt;/p&gt;&lt;p&gt;滚轮缩放，按住中键平移，双击中键显示全部。命令也可以直接输入：名称、空格或回车；Esc 取消，空回车重复上一条命令，F2 展开命令历史。&lt;/p&gt;</source>
        <translation>&lt;p&gt;Open a drawing (Ctrl+O), choose a kind of mark in the menu “评图标签”, outline the place you mean and write your opinion.&lt;/p&gt;&lt;p&gt;The wheel zooms, the middle button pans, a double click with it shows everything. Commands can be typed: their name, then Space or Enter; Esc cancels, Enter alone repeats the last command, F2 shows the command history.&lt;/p&gt;</translation>
    </message>
    <message>
        <source>关于 Quillnote</source>
        <translation>About Quillnote</translation>
    </message>
    <message>
        <source>&lt;h3&gt;Quillnote %1&lt;/h3&gt;&lt;p&gt;在 DXF 图纸中书写、回复和核对校审意见。&lt;/p&gt;&lt;p&gt;使用 Qt %2。&lt;/p&gt;</source>
        <translation>&lt;h3&gt;Quillnote %1&lt;/h3&gt;&lt;p&gt;Writing, answering and checking review marks in DXF drawings.&lt;/p&gt;&lt;p&gt;Uses Qt %2.&lt;/p&gt;</translation>
    </message>
</context>
<context>
    <name>window::MenuBar</name>
    <message>
        <source>常用</source>
        <translation>Standard</translation>
    </message>
    <message>
        <source>%1 (%2)</source>
        <translation>%1 (%2)</translation>
    </message>
    <message>
        <source>(没有)</source>
        <translation>(none)</translation>
    </message>
    <message>
        <source>撤销(&amp;U)</source>
        <translation>&amp;Undo</translation>
    </message>
    <message>
        <source>撤销 %1(&amp;U)</source>
        <translation>&amp;Undo %1</translation>
    </message>
    <message>
        <source>重做(&amp;R)</source>
        <translation>&amp;Redo</translation>
    </message>
    <message>
        <source>重做 %1(&amp;R)</source>
        <translation>&amp;Redo %1</translation>
    </message>
</context>
<context>
    <name>window::RecoveryDialog</name>
    <message>
        <source>恢复图形</source>
        <translation>Recover Drawings</translation>
    </message>
    <message>
        <source>上次没有正常结束。以下图形有未保存的修改，可以恢复：</source>
        <translation>The last session did not end properly. These drawings have unsaved changes that can be recovered:</translation>
    </message>
    <message>
        <source>%1    (%2)</source>
        <translation>%1    (%2)</translation>
    </message>
    <message>
        <source>从未保存过</source>
        <translation>never saved</translation>
    </message>
    <message>
        <source>恢复所选(&amp;O)</source>
        <translation>Recover &amp;Selected</translation>
    </message>
    <message>
        <source>丢弃所选(&amp;D)</source>
        <translation>&amp;Discard Selected</translation>
    </message>
    <message>
        <source>以后再说(&amp;L)</source>
        <translation>&amp;Later</translation>
    </message>
</context>
<context>
    <name>window::StartPage</name>
    <message>
        <source>打开图形…</source>
        <translation>Open a drawing…</translation>
    </message>
    <message>
        <source>DXF 文件；也可以把文件拖到窗口里</source>
        <translation>DXF files; you can also drop files on the window</translation>
    </message>
    <message>
        <source>新建图形</source>
        <translation>New drawing</translation>
    </message>
    <message>
        <source>从内置样板开始</source>
        <translation>Start from the built-in template</translation>
    </message>
    <message>
        <source>在图纸上写下校审意见，设计人在同一张图里回复。</source>
        <translation>Write review marks on the drawing; the designer answers them in the same drawing.</translation>
    </message>
    <message>
        <source>还没有打开过图形</source>
        <translation>No drawing has been opened yet</translation>
    </message>
    <message>
        <source>最近的文件</source>
        <translation>Recent files</translation>
    </message>
</context>
<context>
    <name>window::StatusLine</name>
    <message>
        <source>光标坐标</source>
        <translation>Cursor coordinates</translation>
    </message>
    <message>
        <source>布局、视图扭转与选择</source>
        <translation>Layout, view twist and selection</translation>
    </message>
    <message>
        <source>正在绘制图形</source>
        <translation>The drawing is being painted</translation>
    </message>
    <message>
        <source>正在进行的工作</source>
        <translation>Work under way</translation>
    </message>
    <message>
        <source>进度</source>
        <translation>Progress</translation>
    </message>
    <message>
        <source>停止</source>
        <translation>Stop</translation>
    </message>
    <message>
        <source>停止正在进行的工作 (Esc)</source>
        <translation>Stop the work under way (Esc)</translation>
    </message>
    <message>
        <source>正在绘制…</source>
        <translation>Drawing…</translation>
    </message>
    <message>
        <source>黑白背景</source>
        <translation>Black or white background</translation>
    </message>
    <message>
        <source>在黑色背景与白色背景之间切换</source>
        <translation>Switch between a black and a white background</translation>
    </message>
    <message>
        <source>模型</source>
        <translation>Model</translation>
    </message>
    <message>
        <source>视图扭转 %1°</source>
        <translation>View twist %1°</translation>
    </message>
    <message numerus="yes">
        <source>已选择 %n 个</source>
        <translation>
            <numerusform>%n selected</numerusform>
            <numerusform>%n selected</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>window::WindowFrontEnd</name>
    <message>
        <source>图形 (*.dxf *.DXF)</source>
        <translation>Drawings (*.dxf *.DXF)</translation>
    </message>
    <message>
        <source>所有文件 (*)</source>
        <translation>All files (*)</translation>
    </message>
    <message>
        <source>*取消*</source>
        <translation>*Cancel*</translation>
    </message>
</context>
</TS>
