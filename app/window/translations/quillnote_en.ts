<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="en" sourcelanguage="zh_CN">
<context>
    <name>Host</name>
    <message>
        <source>正在打开 %1</source>
        <translation>Opening %1</translation>
    </message>
    <message>
        <source>正在保存 %1</source>
        <translation>Saving %1</translation>
    </message>
    <message>
        <source>没有找到文件 %1。</source>
        <translation>The file %1 was not found.</translation>
    </message>
    <message>
        <source>不能插入: %1</source>
        <translation>Cannot insert: %1</translation>
    </message>
    <message>
        <source>块 %1 会包含它自己。</source>
        <translation>The block %1 would contain itself.</translation>
    </message>
    <message>
        <source>不能定义块 %1。</source>
        <translation>The block %1 cannot be defined.</translation>
    </message>
    <message>
        <source>
%1 个对象属于本图没有的类，未插入。</source>
        <translation>
%1 objects are of classes that this drawing lacks and were not inserted.</translation>
    </message>
    <message>
        <source>%1 不是块名。</source>
        <translation>%1 is no name for a block.</translation>
    </message>
    <message>
        <source>
块 %1 已存在。重新定义它吗?</source>
        <translation>
The block %1 exists. Redefine it?</translation>
    </message>
    <message>
        <source>
输入块名或 [?]: </source>
        <translation>
Enter block name or [?]: </translation>
    </message>
    <message>
        <source>
输入块名或 [?] &lt;%1&gt;: </source>
        <translation>
Enter block name or [?] &lt;%1&gt;: </translation>
    </message>
    <message>
        <source>
指定比例因子 &lt;1&gt;: </source>
        <translation>
Specify scale factor &lt;1&gt;: </translation>
    </message>
    <message>
        <source>
输入 X 比例因子或 [XYZ(XYZ)] &lt;1&gt;: </source>
        <translation>
Enter X scale factor or [XYZ] &lt;1&gt;: </translation>
    </message>
    <message>
        <source>
输入 X 比例因子 &lt;1&gt;: </source>
        <translation>
Enter X scale factor &lt;1&gt;: </translation>
    </message>
    <message>
        <source>
输入 Y 比例因子或 &lt;使用 X 比例因子&gt;: </source>
        <translation>
Enter Y scale factor or &lt;use X scale factor&gt;: </translation>
    </message>
    <message>
        <source>
输入 Z 比例因子或 &lt;使用 X 比例因子&gt;: </source>
        <translation>
Enter Z scale factor or &lt;use X scale factor&gt;: </translation>
    </message>
    <message>
        <source>
指定插入点: </source>
        <translation>
Specify insertion point: </translation>
    </message>
    <message>
        <source>
指定旋转角度 &lt;0&gt;: </source>
        <translation>
Specify rotation angle &lt;0&gt;: </translation>
    </message>
    <message>
        <source>插入块</source>
        <translation>Insert Block</translation>
    </message>
    <message>
        <source>
没有上一个坐标系。</source>
        <translation>
There is no previous coordinate system.</translation>
    </message>
    <message>
        <source>
指定新原点 &lt;0,0,0&gt;: </source>
        <translation>
Specify new origin &lt;0,0,0&gt;: </translation>
    </message>
    <message>
        <source>
指定绕 Z 轴的旋转角度 &lt;90&gt;: </source>
        <translation>
Specify rotation angle about Z axis &lt;90&gt;: </translation>
    </message>
    <message>
        <source>
指定 X 轴上的点或 &lt;接受&gt;: </source>
        <translation>
Specify point on X axis or &lt;accept&gt;: </translation>
    </message>
    <message>
        <source>
指定 XY 平面上的点或 &lt;接受&gt;: </source>
        <translation>
Specify point on XY plane or &lt;accept&gt;: </translation>
    </message>
    <message>
        <source>三个点在一条直线上。</source>
        <translation>The three points lie on one line.</translation>
    </message>
    <message>
        <source>
指定 UCS 的原点或 [原点(O)/上一个(P)/世界(W)/Z 轴(Z)/三点(3)/视图(V)] &lt;世界&gt;: </source>
        <translation>
Specify origin of UCS or [Origin/Previous/World/Z axis(Z)/three points(3)/View] &lt;World&gt;: </translation>
    </message>
    <message>
        <source>
输入选项 [当前 UCS(C)/世界(W)] &lt;当前&gt;: </source>
        <translation>
Enter an option [Current/World] &lt;Current&gt;: </translation>
    </message>
    <message>
        <source>坐标系</source>
        <translation>Coordinate System</translation>
    </message>
    <message>
        <source>平面视图</source>
        <translation>Plan View</translation>
    </message>
    <message>
        <source>
指定第一点: </source>
        <translation>
Specify first point: </translation>
    </message>
    <message>
        <source>
指定下一点或 [闭合(C)/放弃(U)]: </source>
        <translation>
Specify next point or [Close/Undo]: </translation>
    </message>
    <message>
        <source>
指定下一点或 [放弃(U)]: </source>
        <translation>
Specify next point or [Undo]: </translation>
    </message>
    <message>
        <source>
所有线段都已放弃。</source>
        <translation>
All segments have been undone.</translation>
    </message>
    <message>
        <source>
指定圆的半径或 [直径(D)]: </source>
        <translation>
Specify radius of circle or [Diameter]: </translation>
    </message>
    <message>
        <source>
指定圆的直径: </source>
        <translation>
Specify diameter of circle: </translation>
    </message>
    <message>
        <source>
指定圆的圆心: </source>
        <translation>
Specify center of circle: </translation>
    </message>
    <message>
        <source>
指定点: </source>
        <translation>
Specify point: </translation>
    </message>
    <message>
        <source>
指定文字的起点: </source>
        <translation>
Specify start point of text: </translation>
    </message>
    <message>
        <source>
指定高度 &lt;%1&gt;: </source>
        <translation>
Specify height &lt;%1&gt;: </translation>
    </message>
    <message>
        <source>
指定文字的旋转角度 &lt;0&gt;: </source>
        <translation>
Specify rotation angle of text &lt;0&gt;: </translation>
    </message>
    <message>
        <source>
输入文字: </source>
        <translation>
Enter text: </translation>
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
        <translation>a point</translation>
    </message>
    <message>
        <source>文字</source>
        <translation>Text</translation>
    </message>
    <message>
        <source>
指定基点或 [位移(D)] &lt;位移&gt;: </source>
        <translation>
Specify base point or [Displacement] &lt;Displacement&gt;: </translation>
    </message>
    <message>
        <source>
指定位移 &lt;0,0,0&gt;: </source>
        <translation>
Specify displacement &lt;0,0,0&gt;: </translation>
    </message>
    <message>
        <source>
指定第二个点或 &lt;使用第一个点作为位移&gt;: </source>
        <translation>
Specify second point or &lt;use first point as displacement&gt;: </translation>
    </message>
    <message>
        <source>不能复制: %1</source>
        <translation>Cannot be copied: %1</translation>
    </message>
    <message>
        <source>
指定第二个点或 [退出(E)] &lt;退出&gt;: </source>
        <translation>
Specify second point or [Exit] &lt;Exit&gt;: </translation>
    </message>
    <message>
        <source>
指定基点: </source>
        <translation>
Specify base point: </translation>
    </message>
    <message>
        <source>
指定旋转角度: </source>
        <translation>
Specify rotation angle: </translation>
    </message>
    <message>
        <source>
指定比例因子或 [参照(R)]: </source>
        <translation>
Specify scale factor or [Reference]: </translation>
    </message>
    <message>
        <source>
指定参照长度: </source>
        <translation>
Specify reference length: </translation>
    </message>
    <message>
        <source>
指定新的长度: </source>
        <translation>
Specify new length: </translation>
    </message>
    <message>
        <source>
指定镜像线的第一点: </source>
        <translation>
Specify first point of mirror line: </translation>
    </message>
    <message>
        <source>
指定镜像线的第二点: </source>
        <translation>
Specify second point of mirror line: </translation>
    </message>
    <message>
        <source>镜像线的两点重合。</source>
        <translation>The two points of the mirror line coincide.</translation>
    </message>
    <message>
        <source>
要删除源对象吗?</source>
        <translation>
Erase source objects?</translation>
    </message>
    <message>
        <source>删除</source>
        <translation>removed</translation>
    </message>
    <message>
        <source>恢复删除</source>
        <translation>Bring Back Erased</translation>
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
        <source>没有打开图形。</source>
        <translation>The drawing was not opened.</translation>
    </message>
    <message>
        <source>不能打开图形: %1</source>
        <translation>The drawing cannot be opened: %1</translation>
    </message>
    <message>
        <source>
输入要打开的图形文件名: </source>
        <translation>
Enter name of drawing to open: </translation>
    </message>
    <message>
        <source>没有保存图形。</source>
        <translation>The drawing was not saved.</translation>
    </message>
    <message>
        <source>不能保存图形: %1</source>
        <translation>The drawing cannot be saved: %1</translation>
    </message>
    <message>
        <source>
已有名为 %1 的文件。替换它吗?</source>
        <translation>
There is a file named %1 already. Replace it?</translation>
    </message>
    <message>
        <source>
另存为 %1 会有以上损失。继续吗?</source>
        <translation>
Saving as %1 loses the above. Go on?</translation>
    </message>
    <message>
        <source>
图形另存为 &lt;%1&gt;: </source>
        <translation>
Save drawing as &lt;%1&gt;: </translation>
    </message>
    <message>
        <source>
%1 的修改尚未保存。放弃修改吗?</source>
        <translation>
The changes to %1 are not saved. Discard them?</translation>
    </message>
    <message>
        <source>
%1 个图形的修改尚未保存。放弃修改并退出吗?</source>
        <translation>
The changes to %1 drawings are not saved. Discard them and quit?</translation>
    </message>
    <message>
        <source>
输入模块文件名: </source>
        <translation>
Enter module file name: </translation>
    </message>
    <message>
        <source>不能加载模块: %1</source>
        <translation>The module cannot be loaded: %1</translation>
    </message>
    <message>
        <source>打开</source>
        <translation>Open</translation>
    </message>
    <message>
        <source>新建</source>
        <translation>New</translation>
    </message>
    <message>
        <source>保存副本</source>
        <translation>Save Copy</translation>
    </message>
    <message>
        <source>保存</source>
        <translation>Save</translation>
    </message>
    <message>
        <source>另存为</source>
        <translation>Save As</translation>
    </message>
    <message>
        <source>关闭</source>
        <translation>Close</translation>
    </message>
    <message>
        <source>退出</source>
        <translation>Quit</translation>
    </message>
    <message>
        <source>加载模块</source>
        <translation>Load Module</translation>
    </message>
    <message>
        <source>%1 %2 不能这样改动: %3</source>
        <translation>%1 %2 cannot be changed like this: %3</translation>
    </message>
    <message>
        <source>
指定夹点: </source>
        <translation>
Specify grip: </translation>
    </message>
    <message>
        <source>
该处没有夹点。</source>
        <translation>
There is no grip there.</translation>
    </message>
    <message>
        <source>
指定移动点: </source>
        <translation>
Specify new place: </translation>
    </message>
    <message>
        <source>夹点编辑</source>
        <translation>Grip Edit</translation>
    </message>
    <message>
        <source>起点</source>
        <translation>Start point</translation>
    </message>
    <message>
        <source>端点</source>
        <translation>End point</translation>
    </message>
    <message>
        <source>圆心</source>
        <translation>Center</translation>
    </message>
    <message>
        <source>半径</source>
        <translation>Radius</translation>
    </message>
    <message>
        <source>起点角度</source>
        <translation>Start angle</translation>
    </message>
    <message>
        <source>端点角度</source>
        <translation>End angle</translation>
    </message>
    <message>
        <source>位置</source>
        <translation>Position</translation>
    </message>
    <message>
        <source>高度</source>
        <translation>Height</translation>
    </message>
    <message>
        <source>旋转角度</source>
        <translation>Rotation angle</translation>
    </message>
    <message>
        <source>样式</source>
        <translation>Style</translation>
    </message>
    <message>
        <source>内容</source>
        <translation>Contents</translation>
    </message>
    <message>
        <source>块名</source>
        <translation>Block name</translation>
    </message>
    <message>
        <source>插入点</source>
        <translation>Insertion point</translation>
    </message>
    <message>
        <source>X 比例</source>
        <translation>X scale</translation>
    </message>
    <message>
        <source>Y 比例</source>
        <translation>Y scale</translation>
    </message>
    <message>
        <source>标记</source>
        <translation>Tag</translation>
    </message>
    <message>
        <source>值</source>
        <translation>Value</translation>
    </message>
    <message>
        <source>顶点数</source>
        <translation>Vertices</translation>
    </message>
    <message>
        <source>
          范围 = %1  至  %2</source>
        <translation>
          Extents = %1  to  %2</translation>
    </message>
    <message>
        <source>
%1  图层: %2
          空间: %3
          句柄 = %4</source>
        <translation>
%1  Layer: %2
          Space: %3
          Handle = %4</translation>
    </message>
    <message>
        <source>模型空间</source>
        <translation>Model space</translation>
    </message>
    <message>
        <source>布局 %1</source>
        <translation>Layout %1</translation>
    </message>
    <message>
        <source>
          颜色: %1</source>
        <translation>
          Color: %1</translation>
    </message>
    <message>
        <source>
          线型: %1</source>
        <translation>
          Linetype: %1</translation>
    </message>
    <message>
        <source>
指定第二点: </source>
        <translation>
Specify second point: </translation>
    </message>
    <message>
        <source>
距离 = %1，XY 平面中的倾角 = %2，%3</source>
        <translation>
Distance = %1, angle in XY plane = %2, %3</translation>
    </message>
    <message>
        <source>X 增量 = %1，Y 增量 = %2，Z 增量 = %3</source>
        <translation>delta X = %1, delta Y = %2, delta Z = %3</translation>
    </message>
    <message>
        <source>
打开图形时修复了 %1 处错误。</source>
        <translation>
%1 errors were mended when the drawing was opened.</translation>
    </message>
    <message>
        <source>
输入要列出的变量 &lt;*&gt;: </source>
        <translation>
Enter variables to list &lt;*&gt;: </translation>
    </message>
    <message>
        <source>未知变量名“%1”。</source>
        <translation>Unknown variable name "%1".</translation>
    </message>
    <message>
        <source>
输入 %1 的新值 &lt;%2&gt;: </source>
        <translation>
Enter new value for %1 &lt;%2&gt;: </translation>
    </message>
    <message>
        <source>%1 不接受“%2”。</source>
        <translation>%1 does not take "%2".</translation>
    </message>
    <message>
        <source>%1 是只读的。</source>
        <translation>%1 is read-only.</translation>
    </message>
    <message>
        <source>
输入变量名或 [?]: </source>
        <translation>
Enter variable name or [?]: </translation>
    </message>
    <message>
        <source>列表</source>
        <translation>List</translation>
    </message>
    <message>
        <source>点坐标</source>
        <translation>Point Coordinates</translation>
    </message>
    <message>
        <source>测距离</source>
        <translation>Measure Distance</translation>
    </message>
    <message>
        <source>检查图形</source>
        <translation>Audit</translation>
    </message>
    <message>
        <source>系统变量</source>
        <translation>System Variable</translation>
    </message>
    <message>
        <source>图层名“%1”无效。</source>
        <translation>"%1" is no valid layer name.</translation>
    </message>
    <message>
        <source>不能新建图层“%1”: %2</source>
        <translation>The layer "%1" cannot be made: %2</translation>
    </message>
    <message>
        <source>图层“%1”已冻结，不能置为当前。</source>
        <translation>The layer "%1" is frozen and cannot be made current.</translation>
    </message>
    <message>
        <source>没有图层“%1”。</source>
        <translation>There is no layer "%1".</translation>
    </message>
    <message>
        <source>没有与“%1”匹配的图层。</source>
        <translation>No layer matches "%1".</translation>
    </message>
    <message>
        <source>
输入%1的图层名列表: </source>
        <translation>
Enter name list of layers %1: </translation>
    </message>
    <message>
        <source>
输入%1的图层名列表 &lt;%2&gt;: </source>
        <translation>
Enter name list of layers %1 &lt;%2&gt;: </translation>
    </message>
    <message>
        <source>
输入要列出的图层名 &lt;*&gt;: </source>
        <translation>
Enter layer names to list &lt;*&gt;: </translation>
    </message>
    <message>
        <source>
当前图层: %1</source>
        <translation>
Current layer: %1</translation>
    </message>
    <message>
        <source>关</source>
        <translation>off</translation>
    </message>
    <message>
        <source>开</source>
        <translation>on</translation>
    </message>
    <message>
        <source>冻结</source>
        <translation>frozen</translation>
    </message>
    <message>
        <source>锁定</source>
        <translation>locked</translation>
    </message>
    <message>
        <source>不打印</source>
        <translation>not plotted</translation>
    </message>
    <message>
        <source>
%1  %2  颜色 %3  线型 %4</source>
        <translation>
%1  %2  color %3  linetype %4</translation>
    </message>
    <message>
        <source>
输入新图层的名称 (成为当前图层) &lt;%1&gt;: </source>
        <translation>
Enter name for new layer (becomes the current layer) &lt;%1&gt;: </translation>
    </message>
    <message>
        <source>
输入要置为当前的图层名 &lt;%1&gt;: </source>
        <translation>
Enter layer name to make current &lt;%1&gt;: </translation>
    </message>
    <message>
        <source>
输入新图层的名称列表: </source>
        <translation>
Enter name list for new layers: </translation>
    </message>
    <message>
        <source>要打开</source>
        <translation>to turn on</translation>
    </message>
    <message>
        <source>要关闭</source>
        <translation>to turn off</translation>
    </message>
    <message>
        <source>
要关闭当前图层“%1”吗?</source>
        <translation>
Turn the current layer "%1" off?</translation>
    </message>
    <message>
        <source>要冻结</source>
        <translation>to freeze</translation>
    </message>
    <message>
        <source>不能冻结当前图层“%1”。</source>
        <translation>The current layer "%1" cannot be frozen.</translation>
    </message>
    <message>
        <source>要解冻</source>
        <translation>to thaw</translation>
    </message>
    <message>
        <source>要锁定</source>
        <translation>to lock</translation>
    </message>
    <message>
        <source>要解锁</source>
        <translation>to unlock</translation>
    </message>
    <message>
        <source>
输入颜色名或颜色号 (1-255): </source>
        <translation>
Enter color name or number (1-255): </translation>
    </message>
    <message>
        <source>使用该颜色</source>
        <translation>for this color</translation>
    </message>
    <message>
        <source>颜色“%1”无效。</source>
        <translation>"%1" is no valid color.</translation>
    </message>
    <message>
        <source>
输入已加载的线型名 &lt;CONTINUOUS&gt;: </source>
        <translation>
Enter name of a loaded linetype &lt;CONTINUOUS&gt;: </translation>
    </message>
    <message>
        <source>没有加载线型“%1”。</source>
        <translation>The linetype "%1" is not loaded.</translation>
    </message>
    <message>
        <source>使用该线型</source>
        <translation>for this linetype</translation>
    </message>
    <message>
        <source>
输入打印设置 [打印(P)/不打印(N)] &lt;打印&gt;: </source>
        <translation>
Enter plotting preference [Plot/No] &lt;Plot&gt;: </translation>
    </message>
    <message>
        <source>使用该设置</source>
        <translation>for this preference</translation>
    </message>
    <message>
        <source>
输入选项 [?/新建并置为当前(M)/置为当前(S)/新建(N)/开(ON)/关(OFF)/颜色(C)/线型(L)/打印(P)/冻结(F)/解冻(T)/锁定(LO)/解锁(U)]: </source>
        <translation>
Enter an option [?/Make/Set/New/ON/OFF/Color/Ltype/Plot/Freeze/Thaw/LOck/Unlock]: </translation>
    </message>
    <message>
        <source>图层</source>
        <translation>Layer</translation>
    </message>
    <message>
        <source>没有名为“%1”的布局。</source>
        <translation>There is no layout named "%1".</translation>
    </message>
    <message>
        <source>
输入布局选项 [置为当前(S)/?] &lt;置为当前&gt;: </source>
        <translation>
Enter layout option [Set/?] &lt;Set&gt;: </translation>
    </message>
    <message>
        <source>
输入要置为当前的布局 &lt;%1&gt;: </source>
        <translation>
Enter layout to make current &lt;%1&gt;: </translation>
    </message>
    <message>
        <source>** 命令不能在“模型”选项卡中使用 **</source>
        <translation>** The command cannot be used in the Model tab **</translation>
    </message>
    <message>
        <source>布局中没有可以进入的视口。</source>
        <translation>The layout has no viewport to enter.</translation>
    </message>
    <message>
        <source>没有名为“%1”的视图。</source>
        <translation>There is no view named "%1".</translation>
    </message>
    <message>
        <source>视图“%1”属于另一个空间。</source>
        <translation>The view "%1" belongs to the other space.</translation>
    </message>
    <message>
        <source>
输入选项 [恢复(R)/?] &lt;恢复&gt;: </source>
        <translation>
Enter an option [Restore/?] &lt;Restore&gt;: </translation>
    </message>
    <message>
        <source>
输入要恢复的视图名称: </source>
        <translation>
Enter name of view to restore: </translation>
    </message>
    <message>
        <source>布局</source>
        <translation>Layout</translation>
    </message>
    <message>
        <source>进入视口</source>
        <translation>Enter Viewport</translation>
    </message>
    <message>
        <source>离开视口</source>
        <translation>Leave Viewport</translation>
    </message>
    <message>
        <source>命名视图</source>
        <translation>Named View</translation>
    </message>
    <message>
        <source>
输入要加载的菜单文件名: </source>
        <translation>
Enter name of menu file to load: </translation>
    </message>
    <message>
        <source>不能加载菜单: %1</source>
        <translation>The menu cannot be loaded: %1</translation>
    </message>
    <message>
        <source>
菜单加载成功。菜单组: %1</source>
        <translation>
Menu loaded. Menu group: %1</translation>
    </message>
    <message>
        <source>
输入要卸载的菜单组名: </source>
        <translation>
Enter name of menu group to unload: </translation>
    </message>
    <message>
        <source>
菜单组“%1”已卸载。</source>
        <translation>
The menu group "%1" was unloaded.</translation>
    </message>
    <message>
        <source>没有加载菜单组“%1”。</source>
        <translation>The menu group "%1" is not loaded.</translation>
    </message>
    <message>
        <source>
输入工具栏名或 [全部(ALL)]: </source>
        <translation>
Enter toolbar name or [ALL]: </translation>
    </message>
    <message>
        <source>没有工具栏“%1”。</source>
        <translation>There is no toolbar "%1".</translation>
    </message>
    <message>
        <source>
输入选项 [显示(S)/隐藏(H)] &lt;显示&gt;: </source>
        <translation>
Enter an option [Show/Hide] &lt;Show&gt;: </translation>
    </message>
    <message>
        <source>加载菜单</source>
        <translation>Load Menu</translation>
    </message>
    <message>
        <source>卸载菜单</source>
        <translation>Unload Menu</translation>
    </message>
    <message>
        <source>工具栏</source>
        <translation>Toolbars</translation>
    </message>
    <message>
        <source>
未能完整绘制: %1 (%2 个)</source>
        <translation>
Not drawn completely: %1 (%2)</translation>
    </message>
    <message>
        <source>
输入布局名 &lt;%1&gt;: </source>
        <translation>
Enter layout name &lt;%1&gt;: </translation>
    </message>
    <message>
        <source>
输入输出设备的名称 &lt;PDF&gt;: </source>
        <translation>
Enter output device name &lt;PDF&gt;: </translation>
    </message>
    <message>
        <source>没有设备“%1”；可用的设备: PDF。</source>
        <translation>There is no device "%1"; available: PDF.</translation>
    </message>
    <message>
        <source>
输入图纸尺寸 (名称，或毫米“宽x高”) 或 [?] &lt;%1&gt;: </source>
        <translation>
Enter paper size (a name, or millimeters "width x height" like 420x297) or [?] &lt;%1&gt;: </translation>
    </message>
    <message>
        <source>没有图纸尺寸“%1”。</source>
        <translation>There is no paper size "%1".</translation>
    </message>
    <message>
        <source>
输入图纸单位 [英寸(I)/毫米(M)] &lt;毫米&gt;: </source>
        <translation>
Enter paper units [Inches/Millimeters] &lt;Millimeters&gt;: </translation>
    </message>
    <message>
        <source>
输入图形方向 [纵向(P)/横向(L)] &lt;%1&gt;: </source>
        <translation>
Enter drawing orientation [Portrait/Landscape] &lt;%1&gt;: </translation>
    </message>
    <message>
        <source>横向</source>
        <translation>Landscape</translation>
    </message>
    <message>
        <source>纵向</source>
        <translation>Portrait</translation>
    </message>
    <message>
        <source>
输入窗口的左下角点: </source>
        <translation>
Enter lower left corner of window: </translation>
    </message>
    <message>
        <source>
输入窗口的右上角点: </source>
        <translation>
Enter upper right corner of window: </translation>
    </message>
    <message>
        <source>
输入视图名: </source>
        <translation>
Enter view name: </translation>
    </message>
    <message>
        <source>显示</source>
        <translation>Display</translation>
    </message>
    <message>
        <source>范围</source>
        <translation>Extents</translation>
    </message>
    <message>
        <source>图形界限</source>
        <translation>LImits</translation>
    </message>
    <message>
        <source>视图</source>
        <translation>View</translation>
    </message>
    <message>
        <source>窗口</source>
        <translation>Window</translation>
    </message>
    <message>
        <source>
输入打印区域 [显示(D)/范围(E)/布局(L)/图形界限(LI)/视图(V)/窗口(W)] &lt;%1&gt;: </source>
        <translation>
Enter plot area [Display/Extents/Layout/LImits/View/Window] &lt;%1&gt;: </translation>
    </message>
    <message>
        <source>模型空间没有布局区域。</source>
        <translation>Model space has no layout area.</translation>
    </message>
    <message>
        <source>布满</source>
        <translation>Fit</translation>
    </message>
    <message>
        <source>
输入打印比例 (打印单位=图形单位) 或 [布满(F)] &lt;%1&gt;: </source>
        <translation>
Enter plot scale (plotted units=drawing units) or [Fit] &lt;%1&gt;: </translation>
    </message>
    <message>
        <source>“%1”不是比例，例如 1=100。</source>
        <translation>"%1" is no scale such as 1=100.</translation>
    </message>
    <message>
        <source>居中</source>
        <translation>Center</translation>
    </message>
    <message>
        <source>
输入打印偏移 (x,y) 或 [居中(C)] &lt;%1&gt;: </source>
        <translation>
Enter plot offset (x,y) or [Center] &lt;%1&gt;: </translation>
    </message>
    <message>
        <source>“%1”不是偏移，例如 5,5。</source>
        <translation>"%1" is no offset such as 5,5.</translation>
    </message>
    <message>
        <source>
是否打印线宽?</source>
        <translation>
Plot lineweights?</translation>
    </message>
    <message>
        <source>
输入打印样式表名称 (monochrome.ctb 或 . 表示彩色) &lt;%1&gt;: </source>
        <translation>
Enter plot style table name (monochrome.ctb or . for colors) &lt;%1&gt;: </translation>
    </message>
    <message>
        <source>没有打印样式表“%1”。</source>
        <translation>There is no plot style table "%1".</translation>
    </message>
    <message>
        <source>
输入文件名 &lt;%1&gt;: </source>
        <translation>
Enter file name &lt;%1&gt;: </translation>
    </message>
    <message>
        <source>
是否继续打印?</source>
        <translation>
Proceed with plot?</translation>
    </message>
    <message>
        <source>不能打印: %1</source>
        <translation>Cannot be plotted: %1</translation>
    </message>
    <message>
        <source>
已打印到 %1。</source>
        <translation>
Plotted to %1.</translation>
    </message>
    <message>
        <source>
选择对象或 &lt;全部对象和视口&gt;: </source>
        <translation>
Select objects or &lt;all objects and viewports&gt;: </translation>
    </message>
    <message>
        <source>选定的对象不在视图中。</source>
        <translation>The selected objects are not in the view.</translation>
    </message>
    <message>
        <source>不能输出: %1</source>
        <translation>Cannot be exported: %1</translation>
    </message>
    <message>
        <source>
输入文件名: </source>
        <translation>
Enter file name: </translation>
    </message>
    <message>
        <source>打印</source>
        <translation>Plot</translation>
    </message>
    <message>
        <source>输出图片</source>
        <translation>Export Picture</translation>
    </message>
    <message>
        <source>是</source>
        <translation>Yes</translation>
    </message>
    <message>
        <source>否</source>
        <translation>No</translation>
    </message>
    <message>
        <source>%1 [是(Yes)/否(No)] &lt;%2&gt;: </source>
        <translation>%1 [Yes/No] &lt;%2&gt;: </translation>
    </message>
    <message>
        <source>不能绘制: %1</source>
        <translation>Cannot be drawn: %1</translation>
    </message>
    <message>
        <source>%1 个对象不能改动（所在图层已锁定）。</source>
        <translation>%1 objects cannot be changed (they are on a locked layer).</translation>
    </message>
    <message>
        <source>%1 个对象不允许这样改动。</source>
        <translation>%1 of the objects do not let themselves be changed like this.</translation>
    </message>
    <message>
        <source>所在图层已锁定</source>
        <translation>it is on a locked layer</translation>
    </message>
    <message>
        <source>几何数据无效</source>
        <translation>its geometry is not valid</translation>
    </message>
    <message>
        <source>不适用于这种对象</source>
        <translation>does not apply to this kind of object</translation>
    </message>
    <message>
        <source>正在处理 %1 个对象</source>
        <translation>Working on %1 objects</translation>
    </message>
    <message>
        <source>
已停止，图形没有改动。</source>
        <translation>
Stopped; the drawing is as it was.</translation>
    </message>
    <message>
        <source>正在编组，请先结束编组 (UNDO End)。</source>
        <translation>A group is open, end it first (UNDO End).</translation>
    </message>
    <message>
        <source>
所有操作都已放弃。</source>
        <translation>
Everything has been undone.</translation>
    </message>
    <message>
        <source>
没有可重做的操作。</source>
        <translation>
There is nothing to redo.</translation>
    </message>
    <message>
        <source>
没有打开的编组。</source>
        <translation>
No group is open.</translation>
    </message>
    <message>
        <source>
没有标记，这将放弃所有操作。确定吗?</source>
        <translation>
There is no mark, this will undo everything. Are you sure?</translation>
    </message>
    <message>
        <source>
输入要放弃的操作数目或 [开始(BE)/结束(E)/标记(M)/后退(B)] &lt;1&gt;: </source>
        <translation>
Enter number of operations to undo or [BEgin/End/Mark/Back] &lt;1&gt;: </translation>
    </message>
    <message>
        <source>撤销</source>
        <translation>Undo</translation>
    </message>
    <message>
        <source>重做</source>
        <translation>Redo</translation>
    </message>
    <message>
        <source>
没有可显示的对象。</source>
        <translation>
There is nothing to show.</translation>
    </message>
    <message>
        <source>窗口太小。</source>
        <translation>The window is too small.</translation>
    </message>
    <message>
        <source>
指定第一个角点: </source>
        <translation>
Specify first corner: </translation>
    </message>
    <message>
        <source>
指定对角点: </source>
        <translation>
Specify opposite corner: </translation>
    </message>
    <message>
        <source>需要窗口的角点、比例因子 (如 2 或 2x) 或选项关键字。</source>
        <translation>Requires a corner of the window, a scale factor (like 2 or 2x) or an option keyword.</translation>
    </message>
    <message>
        <source>
输入比例因子 (nX): </source>
        <translation>
Enter scale factor (nX): </translation>
    </message>
    <message>
        <source>
指定中心点: </source>
        <translation>
Specify center point: </translation>
    </message>
    <message>
        <source>
输入比例或高度 &lt;%1&gt;: </source>
        <translation>
Enter magnification or height &lt;%1&gt;: </translation>
    </message>
    <message>
        <source>需要高度，或比例因子 (如 2x)。</source>
        <translation>Requires a height, or a scale factor (like 2x).</translation>
    </message>
    <message>
        <source>
没有保存上一个视图。</source>
        <translation>
There is no previous view.</translation>
    </message>
    <message>
        <source>
指定窗口的角点，输入比例因子 (nX)，或 [全部(A)/中心(C)/范围(E)/上一个(P)/比例(S)/窗口(W)]: </source>
        <translation>
Specify corner of window, enter a scale factor (nX), or [All/Center/Extents/Previous/Scale/Window]: </translation>
    </message>
    <message>
        <source>
指定基点或位移: </source>
        <translation>
Specify base point or displacement: </translation>
    </message>
    <message>
        <source>
指定第二个点: </source>
        <translation>
Specify second point: </translation>
    </message>
    <message>
        <source>
正在重生成图形。</source>
        <translation>
Regenerating drawing.</translation>
    </message>
    <message>
        <source>
指定视图扭曲角度 &lt;0&gt;: </source>
        <translation>
Specify view twist angle &lt;0&gt;: </translation>
    </message>
    <message>
        <source>
输入选项 [扭曲(TW)/缩放(Z)/平移(PA)/放弃(U)/退出(X)] &lt;退出&gt;: </source>
        <translation>
Enter an option [TWist/Zoom/PAn/Undo/eXit] &lt;eXit&gt;: </translation>
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
        <source>重生成</source>
        <translation>Regenerate</translation>
    </message>
    <message>
        <source>全部重生成</source>
        <translation>Regenerate All</translation>
    </message>
    <message>
        <source>转动视图</source>
        <translation>Twist View</translation>
    </message>
    <message>
        <source>边界没有面积。</source>
        <translation>The boundary has no area.</translation>
    </message>
    <message>
        <source>
至少需要三个点。</source>
        <translation>
Three points are needed at least.</translation>
    </message>
    <message>
        <source>
选择多段线: </source>
        <translation>
Select polyline: </translation>
    </message>
    <message>
        <source>这不是至少有三个顶点的多段线。</source>
        <translation>This is no polyline with three vertices or more.</translation>
    </message>
    <message>
        <source>
指定剪裁边界 [选择多段线(S)/多边形(P)/矩形(R)/反向剪裁(I)] &lt;矩形&gt;: </source>
        <translation>
Specify clipping boundary [Select/Polygonal/Rectangular/Invert] &lt;Rectangular&gt;: </translation>
    </message>
    <message>
        <source>
边界内部将被隐藏。</source>
        <translation>
The inside of the boundary will be hidden.</translation>
    </message>
    <message>
        <source>
边界外部将被隐藏。</source>
        <translation>
The outside of the boundary will be hidden.</translation>
    </message>
    <message>
        <source>此版本的图形文件不能保存剪裁。</source>
        <translation>Drawing files of this version cannot hold clips.</translation>
    </message>
    <message>
        <source>
是否删除旧边界?</source>
        <translation>
Delete old boundaries?</translation>
    </message>
    <message>
        <source>所选对象没有剪裁。</source>
        <translation>The selected objects have no clip.</translation>
    </message>
    <message>
        <source>没有选择块参照。</source>
        <translation>No block reference was selected.</translation>
    </message>
    <message>
        <source>
输入剪裁选项 [开(ON)/关(OFF)/删除(D)/生成多段线(P)/新建边界(N)] &lt;新建边界&gt;: </source>
        <translation>
Enter clipping option [ON/OFF/Delete/Polyline/New] &lt;New&gt;: </translation>
    </message>
    <message>
        <source>已加载</source>
        <translation>loaded</translation>
    </message>
    <message>
        <source>已卸载</source>
        <translation>unloaded</translation>
    </message>
    <message>
        <source>未找到</source>
        <translation>not found</translation>
    </message>
    <message>
        <source>不能读取</source>
        <translation>unreadable</translation>
    </message>
    <message>
        <source>循环参照</source>
        <translation>circular</translation>
    </message>
    <message>
        <source>
“%1”已加载。</source>
        <translation>
“%1” loaded.</translation>
    </message>
    <message>
        <source>
“%1”已卸载。</source>
        <translation>
“%1” unloaded.</translation>
    </message>
    <message>
        <source>
“%1”不能加载: %2</source>
        <translation>
Cannot load “%1”: %2</translation>
    </message>
    <message>
        <source>
本图没有外部参照。</source>
        <translation>
The drawing has no external references.</translation>
    </message>
    <message>
        <source>
%1  %2  %3  %4</source>
        <translation>
%1  %2  %3  %4</translation>
    </message>
    <message>
        <source>覆盖</source>
        <translation>overlay</translation>
    </message>
    <message>
        <source>附着</source>
        <translation>attached</translation>
    </message>
    <message>
        <source>
  嵌套: %1  %2  %3</source>
        <translation>
  nested: %1  %2  %3</translation>
    </message>
    <message>
        <source>外部参照 %1 已存在，其文件为 %2。</source>
        <translation>External reference %1 exists; its file is %2.</translation>
    </message>
    <message>
        <source>本图已有名为 %1 的块。</source>
        <translation>The drawing has a block named %1.</translation>
    </message>
    <message>
        <source>
外部参照“%1”已定义，使用现有定义。</source>
        <translation>
External reference “%1” is defined already; its definition is used.</translation>
    </message>
    <message>
        <source>不能附着: %1</source>
        <translation>Cannot attach: %1</translation>
    </message>
    <message>
        <source>
输入要附着的文件名: </source>
        <translation>
Enter name of file to attach: </translation>
    </message>
    <message>
        <source>图形不能参照它自己。</source>
        <translation>A drawing cannot refer to itself.</translation>
    </message>
    <message>
        <source>没有与“%1”匹配的外部参照。</source>
        <translation>No external reference matches “%1”.</translation>
    </message>
    <message>
        <source>外部参照 %1: %2</source>
        <translation>External reference %1: %2</translation>
    </message>
    <message>
        <source>
输入要拆离的外部参照名: </source>
        <translation>
Enter names of external references to detach: </translation>
    </message>
    <message>
        <source>
“%1”已拆离。</source>
        <translation>
“%1” detached.</translation>
    </message>
    <message>
        <source>
输入要绑定的外部参照名: </source>
        <translation>
Enter names of external references to bind: </translation>
    </message>
    <message>
        <source>外部参照 %1 未加载，不能绑定。</source>
        <translation>External reference %1 is not loaded and cannot be bound.</translation>
    </message>
    <message>
        <source>
“%1”已绑定。</source>
        <translation>
“%1” bound.</translation>
    </message>
    <message>
        <source>
输入要卸载的外部参照名: </source>
        <translation>
Enter names of external references to unload: </translation>
    </message>
    <message>
        <source>
输入要重载的外部参照名: </source>
        <translation>
Enter names of external references to reload: </translation>
    </message>
    <message>
        <source>
输入要编辑其路径的外部参照名: </source>
        <translation>
Enter names of external references to edit the path of: </translation>
    </message>
    <message>
        <source>
旧路径: %1</source>
        <translation>
Old path: %1</translation>
    </message>
    <message>
        <source>
输入新路径: </source>
        <translation>
Enter new path: </translation>
    </message>
    <message>
        <source>
输入路径类型 [完整(Full)/相对(Relative)/无(None)] &lt;相对&gt;: </source>
        <translation>
Enter path type [Full/Relative/None] &lt;Relative&gt;: </translation>
    </message>
    <message>
        <source>图形尚未命名，没有相对路径。</source>
        <translation>The drawing has no name yet, so there is no relative path.</translation>
    </message>
    <message>
        <source>
输入要改变路径类型的外部参照名: </source>
        <translation>
Enter names of external references to change the path type of: </translation>
    </message>
    <message>
        <source>
输入选项 [?/绑定(B)/拆离(D)/路径(P)/路径类型(PA)/卸载(U)/重载(R)/覆盖(O)/附着(A)] &lt;附着&gt;: </source>
        <translation>
Enter an option [?/Bind/Detach/Path/PAthtype/Unload/Reload/Overlay/Attach] &lt;Attach&gt;: </translation>
    </message>
    <message>
        <source>外部参照</source>
        <translation>External References</translation>
    </message>
    <message>
        <source>剪裁</source>
        <translation>Clip</translation>
    </message>
    <message>
        <source>选择过滤器第 %1 项: %2</source>
        <translation>Selection filter, item %1: %2</translation>
    </message>
    <message>
        <source>缺少“%1”</source>
        <translation>"%1" is missing</translation>
    </message>
    <message>
        <source>“not”需要一个条件</source>
        <translation>"not" takes one condition</translation>
    </message>
    <message>
        <source>“xor”需要两个条件</source>
        <translation>"xor" takes two conditions</translation>
    </message>
    <message>
        <source>运算符中没有条件</source>
        <translation>there is no condition inside the operator</translation>
    </message>
    <message>
        <source>嵌套过深</source>
        <translation>nested too deeply</translation>
    </message>
    <message>
        <source>未知的运算符“%1”</source>
        <translation>unknown operator "%1"</translation>
    </message>
    <message>
        <source>“%1”后面没有值</source>
        <translation>no value follows "%1"</translation>
    </message>
    <message>
        <source>“%1”不适用于这种值</source>
        <translation>"%1" does not apply to this kind of value</translation>
    </message>
    <message>
        <source>-3 后面没有应用程序名</source>
        <translation>no application name follows -3</translation>
    </message>
    <message>
        <source>需要%1%2。</source>
        <translation>Requires %1%2.</translation>
    </message>
    <message>
        <source>或选项关键字</source>
        <translation> or an option keyword</translation>
    </message>
    <message>
        <source>值必须为正且非零。</source>
        <translation>The value must be positive and not zero.</translation>
    </message>
    <message>
        <source>值必须为正或零。</source>
        <translation>The value must be positive or zero.</translation>
    </message>
    <message>
        <source>值必须非零。</source>
        <translation>The value must not be zero.</translation>
    </message>
    <message>
        <source>整数</source>
        <translation>an integer</translation>
    </message>
    <message>
        <source>需要 %1 到 %2 之间的整数。</source>
        <translation>Requires an integer between %1 and %2.</translation>
    </message>
    <message>
        <source>数值</source>
        <translation>a number</translation>
    </message>
    <message>
        <source>距离数值、两点</source>
        <translation>a distance, two points</translation>
    </message>
    <message>
        <source>角度数值、两点</source>
        <translation>an angle, two points</translation>
    </message>
    <message>
        <source>无效的选项关键字。</source>
        <translation>Invalid option keyword.</translation>
    </message>
    <message>
        <source>
菜单命令“%1”无效: %2</source>
        <translation>
The menu command "%1" is not valid: %2</translation>
    </message>
    <message>
        <source>应为 P位置=+组.菜单 或 P位置=-</source>
        <translation>expected P&lt;position&gt;=+&lt;group&gt;.&lt;menu&gt; or P&lt;position&gt;=-</translation>
    </message>
    <message>
        <source>该位置没有菜单</source>
        <translation>there is no menu at this position</translation>
    </message>
    <message>
        <source>菜单组“%1”未加载</source>
        <translation>the menu group "%1" is not loaded</translation>
    </message>
    <message>
        <source>菜单组“%1”中没有“%2”</source>
        <translation>the menu group "%1" has no "%2"</translation>
    </message>
    <message>
        <source>消息框没有按钮“%1”: %2</source>
        <translation>The message box has no button "%1": %2</translation>
    </message>
    <message>
        <source>
选择对象: </source>
        <translation>
Select objects: </translation>
    </message>
    <message>
        <source>需要点、“L”或句柄。</source>
        <translation>Requires a point, "L" or a handle.</translation>
    </message>
    <message>
        <source>正在打印 %1</source>
        <translation>Plotting %1</translation>
    </message>
    <message>
        <source>提示没有得到回答: %1</source>
        <translation>The prompt got no answer: %1</translation>
    </message>
    <message>
        <source>回答不明确，请说明是 %1。</source>
        <translation>Ambiguous answer, please say which: %1.</translation>
    </message>
    <message>
        <source>必须给出回答。</source>
        <translation>An answer is required.</translation>
    </message>
    <message>
        <source>“%1”: %2</source>
        <translation>"%1": %2</translation>
    </message>
    <message>
        <source>
没有得到可用的回答，命令已取消。</source>
        <translation>
No answer was usable, the command was cancelled.</translation>
    </message>
    <message>
        <source>未知命令“%1”。</source>
        <translation>Unknown command "%1".</translation>
    </message>
    <message>
        <source>没有打开的图形，不能执行“%1”。</source>
        <translation>No drawing is open, "%1" cannot run.</translation>
    </message>
    <message>
        <source>图形已被锁定，不能执行“%1”。</source>
        <translation>The drawing is locked, "%1" cannot run.</translation>
    </message>
    <message>
        <source>
命令: </source>
        <translation>
Command: </translation>
    </message>
    <message>
        <source>
删除对象: </source>
        <translation>
Remove objects: </translation>
    </message>
    <message>
        <source>无效选择。需要点、窗口(W)、窗交(C)、上一个(L)、前一个(P)、全部(ALL)、添加(A)或删除(R)。</source>
        <translation>Invalid selection. Requires a point, Window, Crossing, Last, Previous, ALL, Add or Remove.</translation>
    </message>
    <message>
        <source>
%1 %2 个，总计 %3 个</source>
        <translation>
%2 %1, %3 total</translation>
    </message>
    <message>
        <source>找到</source>
        <translation>found</translation>
    </message>
    <message>
        <source>
找到 %1 个</source>
        <translation>
%1 found</translation>
    </message>
    <message>
        <source>
请打开：%1</source>
        <translation>
Please open: %1</translation>
    </message>
    <message>
        <source>颜色</source>
        <translation>Colours</translation>
    </message>
    <message>
        <source>选择颜色</source>
        <translation>Choose Colour</translation>
    </message>
    <message>
        <source>确定</source>
        <translation>OK</translation>
    </message>
    <message>
        <source>取消</source>
        <translation>Cancel</translation>
    </message>
    <message>
        <source>颜色号：</source>
        <translation>Colour number:</translation>
    </message>
    <message>
        <source>随层</source>
        <translation>By Layer</translation>
    </message>
    <message>
        <source>随块</source>
        <translation>By Block</translation>
    </message>
    <message>
        <source>名称</source>
        <translation>Name</translation>
    </message>
    <message>
        <source>状态</source>
        <translation>State</translation>
    </message>
    <message>
        <source>类型</source>
        <translation>Type</translation>
    </message>
    <message>
        <source>路径</source>
        <translation>Path</translation>
    </message>
    <message>
        <source>附着(&amp;A)...</source>
        <translation>&amp;Attach...</translation>
    </message>
    <message>
        <source>覆盖(&amp;O)...</source>
        <translation>&amp;Overlay...</translation>
    </message>
    <message>
        <source>重载(&amp;R)</source>
        <translation>&amp;Reload</translation>
    </message>
    <message>
        <source>卸载(&amp;U)</source>
        <translation>&amp;Unload</translation>
    </message>
    <message>
        <source>路径(&amp;P)...</source>
        <translation>&amp;Path...</translation>
    </message>
    <message>
        <source>绑定(&amp;B)</source>
        <translation>&amp;Bind</translation>
    </message>
    <message>
        <source>拆离(&amp;D)</source>
        <translation>&amp;Detach</translation>
    </message>
    <message>
        <source>%1 的图形文件</source>
        <translation>Drawing File of %1</translation>
    </message>
    <message>
        <source>修改</source>
        <translation>Change</translation>
    </message>
    <message>
        <source>窗口(W)/窗交(C)/框选(BOX)/全部(ALL)/上一个(L)/前一个(P)/添加(A)/删除(R)/单个(SI)</source>
        <translation>Window/Crossing/BOX/ALL/Last/Previous/Add/Remove/SIngle</translation>
    </message>
    <message>
        <source>数据库文件 %1 不能打开：%2</source>
        <translation>The database %1 cannot be opened: %2</translation>
    </message>
    <message>
        <source>数据库文件是更新版本的程序写的。</source>
        <translation>The database was written by a newer version of the program.</translation>
    </message>
    <message>
        <source>数据库不能读写：%1</source>
        <translation>The database cannot be read or written: %1</translation>
    </message>
    <message>
        <source>没有文字。</source>
        <translation>There is no text.</translation>
    </message>
    <message>
        <source>&lt; %1 &gt;文件不是ANSI编码，请用记事本打开并以ANSI格式保存。</source>
        <translation>The file &lt; %1 &gt; has no ANSI encoding. Open it in a text editor and save it as ANSI.</translation>
    </message>
</context>
<context>
    <name>bank::CBankSetupWnd</name>
    <message>
        <source>选择默认检索知识库</source>
        <translation>Phrase Bank to Search</translation>
    </message>
    <message>
        <source>导入知识条目文件…</source>
        <translation>Import a Phrase File…</translation>
    </message>
    <message>
        <source>导出为知识条目文件…</source>
        <translation>Export as a Phrase File…</translation>
    </message>
    <message>
        <source>删除</source>
        <translation>Remove</translation>
    </message>
    <message>
        <source>确定</source>
        <translation>OK</translation>
    </message>
    <message>
        <source>默认检索：</source>
        <translation>Searched:</translation>
    </message>
    <message>
        <source>全部</source>
        <translation>All</translation>
    </message>
    <message numerus="yes">
        <source>%1（%n 条）</source>
        <translation>
            <numerusform>%1 (%n phrase)</numerusform>
            <numerusform>%1 (%n phrases)</numerusform>
        </translation>
    </message>
    <message>
        <source>导入知识条目文件</source>
        <translation>Import a Phrase File</translation>
    </message>
    <message>
        <source>导入 %1 条，其中 %2 条是新的。</source>
        <translation>%1 phrases imported, %2 of them new.</translation>
    </message>
    <message>
        <source>导出为知识条目文件</source>
        <translation>Export as a Phrase File</translation>
    </message>
    <message numerus="yes">
        <source>已导出 %n 条。</source>
        <translation>
            <numerusform>%n phrase exported.</numerusform>
            <numerusform>%n phrases exported.</numerusform>
        </translation>
    </message>
    <message>
        <source>删除“%1”的全部条目？</source>
        <translation>Remove all phrases of “%1”?</translation>
    </message>
</context>
<context>
    <name>bank::CKeywordsWnd</name>
    <message>
        <source>定义知识库检索关键词</source>
        <translation>Keywords of the Phrase Bank</translation>
    </message>
    <message>
        <source>靶区内的图层名、图块名或文字含有关键词或其同义词时，含有它们的条目排在前面。</source>
        <translation>Where a layer, block or text in the target holds a keyword or a synonym, the phrases that hold them stand first.</translation>
    </message>
    <message>
        <source>几个词之间用逗号或顿号隔开</source>
        <translation>several words, divided by commas</translation>
    </message>
    <message>
        <source>保存</source>
        <translation>Save</translation>
    </message>
    <message>
        <source>删除</source>
        <translation>Remove</translation>
    </message>
    <message>
        <source>关闭</source>
        <translation>Close</translation>
    </message>
    <message>
        <source>关键词：</source>
        <translation>Keyword:</translation>
    </message>
    <message>
        <source>同义词：</source>
        <translation>Synonyms:</translation>
    </message>
    <message>
        <source>请输入关键词。</source>
        <translation>Type a keyword.</translation>
    </message>
</context>
<context>
    <name>bank::CPhraseBankWnd</name>
    <message>
        <source>知识库</source>
        <translation>Phrase Bank</translation>
    </message>
    <message>
        <source>输入文字即检索，几个词之间用空格隔开</source>
        <translation>type to search; several words are divided by blanks</translation>
    </message>
    <message>
        <source>全部</source>
        <translation>All</translation>
    </message>
    <message>
        <source>条目</source>
        <translation>Phrase</translation>
    </message>
    <message>
        <source>命中</source>
        <translation>Hit By</translation>
    </message>
    <message>
        <source>分类</source>
        <translation>Category</translation>
    </message>
    <message>
        <source>选用次数</source>
        <translation>Chosen</translation>
    </message>
    <message>
        <source>选用</source>
        <translation>Insert</translation>
    </message>
    <message>
        <source>取消</source>
        <translation>Cancel</translation>
    </message>
    <message numerus="yes">
        <source>%n 条</source>
        <translation>
            <numerusform>%n phrase</numerusform>
            <numerusform>%n phrases</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>只显示前 %n 条</source>
        <translation>
            <numerusform>only the first %n phrases</numerusform>
            <numerusform>only the first %n phrases</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>ink::Overlay</name>
    <message>
        <source>手绘草图</source>
        <translation>Freehand sketch</translation>
    </message>
    <message>
        <source>草图无法保存，请重试或取消。
%1</source>
        <translation>The sketch cannot be saved. Try again or cancel.
%1</translation>
    </message>
</context>
<context>
    <name>ink::Strip</name>
    <message>
        <source>绘图工具</source>
        <translation>Drawing tools</translation>
    </message>
    <message>
        <source>%1（%2）</source>
        <translation>%1 (%2)</translation>
    </message>
    <message>
        <source>手绘</source>
        <translation>Freehand</translation>
    </message>
    <message>
        <source>直线</source>
        <translation>Line</translation>
    </message>
    <message>
        <source>矩形</source>
        <translation>Rectangle</translation>
    </message>
    <message>
        <source>圆角矩形</source>
        <translation>Rounded rectangle</translation>
    </message>
    <message>
        <source>椭圆</source>
        <translation>Ellipse</translation>
    </message>
    <message>
        <source>填充</source>
        <translation>Fill</translation>
    </message>
    <message>
        <source>细线 0.20 毫米</source>
        <translation>Thin line 0.20 mm</translation>
    </message>
    <message>
        <source>中线 0.35 毫米</source>
        <translation>Medium line 0.35 mm</translation>
    </message>
    <message>
        <source>粗线 0.50 毫米</source>
        <translation>Bold line 0.50 mm</translation>
    </message>
    <message>
        <source>特粗线 0.70 毫米</source>
        <translation>Extra bold line 0.70 mm</translation>
    </message>
    <message>
        <source>红色</source>
        <translation>Red</translation>
    </message>
    <message>
        <source>橙色</source>
        <translation>Orange</translation>
    </message>
    <message>
        <source>黄色</source>
        <translation>Yellow</translation>
    </message>
    <message>
        <source>绿色</source>
        <translation>Green</translation>
    </message>
    <message>
        <source>青色</source>
        <translation>Cyan</translation>
    </message>
    <message>
        <source>蓝色</source>
        <translation>Blue</translation>
    </message>
    <message>
        <source>品红</source>
        <translation>Magenta</translation>
    </message>
    <message>
        <source>白色</source>
        <translation>White</translation>
    </message>
    <message>
        <source>黑色</source>
        <translation>Black</translation>
    </message>
    <message>
        <source>撤销</source>
        <translation>Undo</translation>
    </message>
    <message>
        <source>重做</source>
        <translation>Redo</translation>
    </message>
    <message>
        <source>清空</source>
        <translation>Clear</translation>
    </message>
    <message>
        <source>取消</source>
        <translation>Cancel</translation>
    </message>
    <message>
        <source>完成</source>
        <translation>Done</translation>
    </message>
</context>
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
        <source>他人</source>
        <translation>somebody else</translation>
    </message>
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
        <source>外部参照 %1 没有显示: %2</source>
        <translation>External reference %1 is not shown: %2</translation>
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
        <source>另存为 %1 会有损失。继续吗?</source>
        <translation>Saving as %1 loses something. Go on?</translation>
    </message>
    <message>
        <source>已保存 %1。</source>
        <translation>Saved %1.</translation>
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
        <source>%1 正由 %2 编辑，不能以原名保存。</source>
        <translation>%1 is being edited by %2 and cannot be saved under its own name.</translation>
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
        <source>不能写恢复副本: %1</source>
        <translation>The recovery copy cannot be written: %1</translation>
    </message>
    <message>
        <source>%1 的外部参照已改变: %2。重新加载吗?</source>
        <translation>External references of %1 have changed: %2. Reload them?</translation>
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
        <source>%1（只读）</source>
        <translation>%1 (read-only)</translation>
    </message>
    <message>
        <source>打开的图形</source>
        <translation>Open drawings</translation>
    </message>
    <message>
        <source>尚未保存</source>
        <translation>Not saved yet</translation>
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
        <source>外部参照(&amp;X)…</source>
        <translation>E&amp;xternal References…</translation>
    </message>
    <message>
        <source>列出、附着和重载外部参照</source>
        <translation>List, attach and reload external references</translation>
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
        <source>剪裁(&amp;X)</source>
        <translation>&amp;Clip Block</translation>
    </message>
    <message>
        <source>只显示块或外部参照的一部分</source>
        <translation>Show only a part of a block or external reference</translation>
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
        <source>&lt;h3&gt;Quillnote %1&lt;/h3&gt;&lt;p&gt;在 DWG 和 DXF 图纸中书写、回复和核对校审意见。&lt;/p&gt;&lt;p&gt;使用 Qt %2。&lt;/p&gt;</source>
        <translation>&lt;h3&gt;Quillnote %1&lt;/h3&gt;&lt;p&gt;Writing, answering and checking review marks in DWG and DXF drawings.&lt;/p&gt;&lt;p&gt;Uses Qt %2.&lt;/p&gt;</translation>
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
        <source>与其他人同步</source>
        <translation>Sharing with other people</translation>
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
    <message numerus="yes">
        <source>%n 个标签已隐藏</source>
        <translation>
            <numerusform>%n mark hidden</numerusform>
            <numerusform>%n marks hidden</numerusform>
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
        <source>图形 (*.dwg *.DWG *.dxf *.DXF)</source>
        <translation>Drawings (*.dwg *.DWG *.dxf *.DXF)</translation>
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
