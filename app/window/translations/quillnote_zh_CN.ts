<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="zh_CN" sourcelanguage="en">
<context>
    <name>Host</name>
    <message>
        <source>%1: the drawing came from no file that could be written</source>
        <translation>%1: 此图形不是来自可写入的文件</translation>
    </message>
    <message>
        <source>%1: in spite of its name this is a %2 file; save the drawing under another name</source>
        <translation>%1: 虽然名字如此，这是一个 %2 文件；请把图形另存为别的名字</translation>
    </message>
    <message>
        <source>%1: another drawing is being opened or saved</source>
        <translation>%1: 正在打开或保存另一张图形</translation>
    </message>
    <message>
        <source>%1: the drawing is open already</source>
        <translation>%1: 图形已经打开</translation>
    </message>
    <message>
        <source>%1: %2 has it open for editing or is saving it; try again when he is done, or save under another name</source>
        <translation>%1: 正由 %2 编辑或保存；请在其完成后再试，或另存为其他名称</translation>
    </message>
    <message>
        <source>%1: the file is open as another document</source>
        <translation>%1: 该文件已作为另一张图形打开</translation>
    </message>
    <message>
        <source>%1 is saved, but could not keep %2</source>
        <translation>%1 已保存，但未能保留%2</translation>
    </message>
    <message>
        <source>%1: the drawing has no file name yet</source>
        <translation>%1: 图形还没有文件名</translation>
    </message>
    <message>
        <source>somebody</source>
        <translation>他人</translation>
    </message>
    <message>
        <source>%1 on %2</source>
        <translation>%1（%2）</translation>
    </message>
    <message>
        <source>%1 since %2</source>
        <translation>%1，始于 %2</translation>
    </message>
    <message>
        <source>%1: handle %2 is used twice; the second one is known as %3</source>
        <translation>%1: 句柄 %2 使用了两次，第二个改为 %3</translation>
    </message>
    <message>
        <source>%1 more handles are used twice.</source>
        <translation>另有 %1 个句柄重复使用。</translation>
    </message>
    <message>
        <source>more references than can be shown</source>
        <translation>外部参照过多</translation>
    </message>
    <message>
        <source>unloaded</source>
        <translation>已卸载</translation>
    </message>
    <message>
        <source>%1 not found</source>
        <translation>未找到 %1</translation>
    </message>
    <message>
        <source>%1 leads back to a drawing that shows it</source>
        <translation>%1 又参照了显示它的图形</translation>
    </message>
    <message>
        <source>%1: the menu group "%2" is loaded already</source>
        <translation>%1: 菜单组“%2”已经加载</translation>
    </message>
    <message>
        <source>&lt;%1&gt; lacks its attribute "%2"</source>
        <translation>&lt;%1&gt; 缺少属性“%2”</translation>
    </message>
    <message>
        <source>the attribute "%1" is longer than %2 characters</source>
        <translation>属性“%1”超过 %2 个字符</translation>
    </message>
    <message>
        <source>menus are nested deeper than %1 levels</source>
        <translation>菜单嵌套超过 %1 层</translation>
    </message>
    <message>
        <source>more than %1 menu items</source>
        <translation>菜单项超过 %1 个</translation>
    </message>
    <message>
        <source>this is no menu file: it does not begin with &lt;menu-file&gt;</source>
        <translation>这不是菜单文件: 不以 &lt;menu-file&gt; 开头</translation>
    </message>
    <message>
        <source>menu file version %1 is not supported</source>
        <translation>不支持菜单文件版本 %1</translation>
    </message>
    <message>
        <source>&lt;group&gt; is missing</source>
        <translation>缺少 &lt;group&gt;</translation>
    </message>
    <message>
        <source>a menu file holds one &lt;group&gt;</source>
        <translation>菜单文件只能有一个 &lt;group&gt;</translation>
    </message>
    <message>
        <source>%1:1: the file is larger than 4 MiB</source>
        <translation>%1:1: 文件大于 4 MiB</translation>
    </message>
    <message>
        <source>not well-formed XML (%1)</source>
        <translation>不是格式正确的 XML (%1)</translation>
    </message>
    <message>
        <source>%1: there is no memory for such a picture</source>
        <translation>%1: 内存不足，不能生成这样的图片</translation>
    </message>
    <message>
        <source>%1: the picture cannot be written as PNG</source>
        <translation>%1: 图片不能写成 PNG</translation>
    </message>
    <message>
        <source>a page of %1 x %2 mm with these margins cannot be plotted</source>
        <translation>不能打印 %1 x %2 毫米、带这些页边距的图纸</translation>
    </message>
    <message>
        <source>the plot scale must be above 0</source>
        <translation>打印比例必须大于 0</translation>
    </message>
    <message>
        <source>the plot lies outside the page</source>
        <translation>打印内容在图纸之外</translation>
    </message>
    <message>
        <source>there is nothing to plot</source>
        <translation>没有可打印的内容</translation>
    </message>
    <message>
        <source>%1: the plot was stopped</source>
        <translation>%1: 打印已停止</translation>
    </message>
    <message>
        <source>there is no view named "%1"</source>
        <translation>没有名为“%1”的视图</translation>
    </message>
    <message>
        <source>standard output</source>
        <translation>标准输出</translation>
    </message>
    <message>
        <source>INSERT: more instances than a picture can show</source>
        <translation>INSERT: 实例过多，图像无法全部显示</translation>
    </message>
    <message>
        <source>not found</source>
        <translation>找不到</translation>
    </message>
    <message>
        <source>is no image</source>
        <translation>不是图像</translation>
    </message>
    <message>
        <source>is too large (%1 × %2 pixels)</source>
        <translation>过大 (%1 × %2 像素)</translation>
    </message>
    <message>
        <source>SHAPE: no shape file for %1</source>
        <translation>SHAPE: 没有 %1 的形文件</translation>
    </message>
    <message>
        <source>INSERT: attributes of the first %1 instances only</source>
        <translation>INSERT: 只显示前 %1 个实例的属性</translation>
    </message>
    <message>
        <source>INSERT: xref %1: %2</source>
        <translation>INSERT: 外部参照 %1: %2</translation>
    </message>
    <message>
        <source>Xref %1</source>
        <translation>外部参照 %1</translation>
    </message>
    <message>
        <source>ACAD_TABLE: no picture</source>
        <translation>ACAD_TABLE: 没有图像</translation>
    </message>
    <message>
        <source>ACAD_TABLE: only its grid</source>
        <translation>ACAD_TABLE: 只画出网格</translation>
    </message>
    <message>
        <source>HATCH: pattern too dense</source>
        <translation>HATCH: 图案过密</translation>
    </message>
    <message>
        <source>%1: only its frame</source>
        <translation>%1: 只画出边框</translation>
    </message>
    <message>
        <source>%1: %2 not shown</source>
        <translation>%1: 未显示 %2</translation>
    </message>
    <message>
        <source>%1: the first %2 characters only</source>
        <translation>%1: 只显示前 %2 个字符</translation>
    </message>
    <message>
        <source>%1: no such module</source>
        <translation>%1: 没有这个模块</translation>
    </message>
    <message>
        <source>access denied</source>
        <translation>拒绝访问</translation>
    </message>
    <message>
        <source>the file or its folder is read-only</source>
        <translation>文件或所在文件夹是只读的</translation>
    </message>
    <message>
        <source>not a plain file</source>
        <translation>不是普通文件</translation>
    </message>
    <message>
        <source>no space left</source>
        <translation>没有剩余空间</translation>
    </message>
    <message>
        <source>somebody else has written the file meanwhile, it is not overwritten; open it again, or save under another name</source>
        <translation>文件已被他人改写，没有覆盖；请重新打开，或另存为其他名称</translation>
    </message>
    <message>
        <source>cannot be used</source>
        <translation>不能使用</translation>
    </message>
    <message>
        <source>the access list</source>
        <translation>访问控制列表</translation>
    </message>
    <message>
        <source>extended attributes</source>
        <translation>扩展属性</translation>
    </message>
    <message>
        <source>the owner</source>
        <translation>所有者</translation>
    </message>
    <message>
        <source>the group</source>
        <translation>所属组</translation>
    </message>
    <message>
        <source>the permissions</source>
        <translation>权限</translation>
    </message>
    <message>
        <source>the tie to its other names (hard links), which keep the old content</source>
        <translation>与其他名称的联系(硬链接)，这些名称仍为旧内容</translation>
    </message>
    <message>
        <source>an external reference cannot own entities</source>
        <translation>外部参照不能拥有图元</translation>
    </message>
    <message>
        <source>the file is too short</source>
        <translation>文件太短</translation>
    </message>
    <message>
        <source>the drawing is encrypted; save it without a password first</source>
        <translation>图形已加密；请先去掉密码再保存</translation>
    </message>
    <message>
        <source>the section %1 is missing</source>
        <translation>缺少节 %1</translation>
    </message>
    <message>
        <source>the file says nowhere where its sections are</source>
        <translation>文件没有说明各节的位置</translation>
    </message>
    <message>
        <source>the checksum of the file's header is wrong</source>
        <translation>文件头的校验和不对</translation>
    </message>
    <message>
        <source>its corners do not lie in one plane</source>
        <translation>其角点不在同一平面上</translation>
    </message>
    <message>
        <source>its groups contradict each other</source>
        <translation>其各组相互矛盾</translation>
    </message>
    <message>
        <source>its names and its objects do not match</source>
        <translation>其名称与对象不对应</translation>
    </message>
    <message>
        <source>group %1 is too long</source>
        <translation>组 %1 过长</translation>
    </message>
    <message>
        <source>groups of the application %1 have no place in a DWG file</source>
        <translation>DWG 文件中没有应用程序 %1 的组的位置</translation>
    </message>
    <message>
        <source>the drawing has nothing called "%1"</source>
        <translation>图形中没有名为“%1”的记录</translation>
    </message>
    <message>
        <source>the drawing has no colour "%1"</source>
        <translation>图形中没有颜色“%1”</translation>
    </message>
    <message>
        <source>the application %1 of extended data is not registered in the drawing</source>
        <translation>扩展数据的应用程序 %1 未在图形中注册</translation>
    </message>
    <message>
        <source>the extended data of %1 are too long</source>
        <translation>%1 的扩展数据过长</translation>
    </message>
    <message>
        <source>group %1 of extended data cannot be stored</source>
        <translation>扩展数据的组 %1 无法保存</translation>
    </message>
    <message>
        <source>a table cannot be made anew</source>
        <translation>表不能重新建立</translation>
    </message>
    <message>
        <source>a DWG file has no form for objects of this kind</source>
        <translation>DWG 文件中没有这种对象的形式</translation>
    </message>
    <message>
        <source>its texts cannot be told from its other data</source>
        <translation>其文字无法与其他数据区分</translation>
    </message>
    <message>
        <source>its bits are damaged</source>
        <translation>其数据已损坏</translation>
    </message>
    <message>
        <source>objects of this kind can be kept in a DWG file, but not changed or added</source>
        <translation>DWG 文件中这种对象可以保留，但不能修改或添加</translation>
    </message>
    <message>
        <source>DWG drawings of this version are only read</source>
        <translation>此版本的 DWG 图形只能读取</translation>
    </message>
    <message>
        <source>DWG drawings of this version do not have that kind</source>
        <translation>此版本的 DWG 图形没有这种对象</translation>
    </message>
    <message>
        <source>group %1 has no place in a DWG file</source>
        <translation>DWG 文件中没有组 %1 的位置</translation>
    </message>
    <message>
        <source>a text of %1 characters is too long</source>
        <translation>文字过长（%1 个字符）</translation>
    </message>
    <message>
        <source>that part of it can only be read</source>
        <translation>其中这一部分只能读取</translation>
    </message>
    <message>
        <source>%1: DWG drawings of version %2 cannot be read</source>
        <translation>%1: 不能读取 %2 版的 DWG 图形</translation>
    </message>
    <message>
        <source>a DXF drawing cannot be saved as DWG</source>
        <translation>DXF 图形不能保存为 DWG</translation>
    </message>
    <message>
        <source>DWG drawings cannot be written</source>
        <translation>不能写入 DWG 图形</translation>
    </message>
    <message>
        <source>the drawing's variables behind %1 could not be read</source>
        <translation>%1 之后的图形变量无法读取</translation>
    </message>
    <message>
        <source>the variable $%1 names "%2", which the drawing does not have</source>
        <translation>变量 $%1 指向“%2”，而图形中没有它</translation>
    </message>
    <message>
        <source>the drawing's variables are damaged and cannot be written again</source>
        <translation>图形的变量已损坏，无法重新写入</translation>
    </message>
    <message>
        <source>%1 parts of the object map have a wrong checksum</source>
        <translation>对象表有 %1 段的校验和不对</translation>
    </message>
    <message>
        <source>the object map has no end</source>
        <translation>对象表没有结尾</translation>
    </message>
    <message>
        <source>the class records behind %1 could not be read</source>
        <translation>第 %1 条之后的类记录无法读取</translation>
    </message>
    <message>
        <source>the drawing's class records are damaged and cannot be written again</source>
        <translation>图形的类记录已损坏，无法重新写入</translation>
    </message>
    <message>
        <source>DWG files of versions before 2000 can be read, but not written</source>
        <translation>2000 版以前的 DWG 文件只能读取，不能写入</translation>
    </message>
    <message>
        <source>the drawing is signed or protected, which a changed drawing would not be</source>
        <translation>图形已签名或受保护，修改后将不再有效</translation>
    </message>
    <message>
        <source>the file was damaged when it was opened (%1)</source>
        <translation>文件在打开时已损坏 (%1)</translation>
    </message>
    <message>
        <source>%1; save the drawing as DXF (SAVEAS with a name that ends in .dxf)</source>
        <translation>%1；请把图形另存为 DXF (SAVEAS，文件名以 .dxf 结尾)</translation>
    </message>
    <message>
        <source>object %1 is damaged</source>
        <translation>对象 %1 已损坏</translation>
    </message>
    <message>
        <source>the checksum of the file's header is wrong; its copy at the end is used</source>
        <translation>文件头的校验和不对，改用文件末尾的副本</translation>
    </message>
    <message>
        <source>the checksum of the page map is wrong</source>
        <translation>页表的校验和不对</translation>
    </message>
    <message>
        <source>the checksum of the section map is wrong</source>
        <translation>节表的校验和不对</translation>
    </message>
    <message>
        <source>the section map is cut off</source>
        <translation>节映射表被截断</translation>
    </message>
    <message>
        <source>page %1 is missing</source>
        <translation>缺少第 %1 页</translation>
    </message>
    <message>
        <source>page %1 is damaged and was left out</source>
        <translation>第 %1 页已损坏，未读入</translation>
    </message>
    <message>
        <source>the checksum of page %1 is wrong</source>
        <translation>第 %1 页的校验和不对</translation>
    </message>
    <message>
        <source>page %1 is damaged behind byte %2</source>
        <translation>第 %1 页从第 %2 字节起已损坏</translation>
    </message>
    <message>
        <source>the file's header is damaged</source>
        <translation>文件头已损坏</translation>
    </message>
    <message>
        <source>the page map is missing or damaged</source>
        <translation>页表缺失或已损坏</translation>
    </message>
    <message>
        <source>the section map is missing or damaged</source>
        <translation>节表缺失或已损坏</translation>
    </message>
    <message>
        <source>the sections would be far larger than the file</source>
        <translation>各节远大于文件本身</translation>
    </message>
    <message>
        <source>the file's header was damaged; its code words mended what they could</source>
        <translation>文件头曾有损坏，已由纠错码尽量修复</translation>
    </message>
    <message>
        <source>the checksum of the %1 is wrong</source>
        <translation>%1的校验和不对</translation>
    </message>
    <message>
        <source>page map</source>
        <translation>页表</translation>
    </message>
    <message>
        <source>the section map is damaged</source>
        <translation>节映射表已损坏</translation>
    </message>
    <message>
        <source>page %1 was damaged; its code words mended it</source>
        <translation>第 %1 页曾有损坏，已由纠错码修复</translation>
    </message>
    <message>
        <source>section map</source>
        <translation>节表</translation>
    </message>
    <message>
        <source>the sections are encrypted or would be far larger than the file</source>
        <translation>各节已加密，或远大于文件本身</translation>
    </message>
    <message>
        <source>%1 objects are damaged and were left out</source>
        <translation>%1 个对象已损坏，未读入</translation>
    </message>
    <message>
        <source>%1 objects have a wrong checksum; they are read as they are</source>
        <translation>%1 个对象的校验和不对，照原样读入</translation>
    </message>
    <message>
        <source>the table %1 is missing</source>
        <translation>缺少表 %1</translation>
    </message>
    <message>
        <source>%1 entities are not listed by the block that owns them; they were added to it</source>
        <translation>%1 个对象没有列在所属的块中，已补入该块</translation>
    </message>
    <message>
        <source>opening was stopped</source>
        <translation>打开已停止</translation>
    </message>
    <message>
        <source>the drawing has no model space that can be read</source>
        <translation>图形没有可读的模型空间</translation>
    </message>
    <message>
        <source>the section %1 is not as it was meant</source>
        <translation>节 %1 与预期不符</translation>
    </message>
    <message>
        <source>it names %1 objects instead of %2</source>
        <translation>其中列出 %1 个对象，应为 %2 个</translation>
    </message>
    <message>
        <source>object %1 is missing</source>
        <translation>缺少对象 %1</translation>
    </message>
    <message>
        <source>object %1 is not as it was meant</source>
        <translation>对象 %1 与预期不符</translation>
    </message>
    <message>
        <source>the file lacks a table that new records would go to</source>
        <translation>文件缺少存放新记录的表</translation>
    </message>
    <message>
        <source>the file has no place for the variable %1</source>
        <translation>文件中没有存放变量 %1 的位置</translation>
    </message>
    <message>
        <source>the variable %1 has no place in a DWG file of this version</source>
        <translation>此版本的 DWG 文件不能存放变量 %1</translation>
    </message>
    <message>
        <source>the section %1 does not begin as it should</source>
        <translation>节 %1 的开头不对</translation>
    </message>
    <message>
        <source>the section %1 is cut off</source>
        <translation>节 %1 不完整</translation>
    </message>
    <message>
        <source>the checksum of the section %1 is wrong</source>
        <translation>节 %1 的校验和不对</translation>
    </message>
    <message>
        <source>the texts of the linetype are too long</source>
        <translation>线型的文字过长</translation>
    </message>
    <message>
        <source>%1 %2 is not where it should be</source>
        <translation>%1 %2 不在应有的位置</translation>
    </message>
    <message>
        <source>the file before it as a backup (%1)</source>
        <translation>原文件的备份 (%1)</translation>
    </message>
    <message>
        <source>saving was stopped</source>
        <translation>保存已停止</translation>
    </message>
    <message>
        <source>what was written cannot be read again (%1); the file stays as it was</source>
        <translation>写出的内容不能重新读取 (%1)；原文件保持不变</translation>
    </message>
    <message>
        <source>the owner %1 is no layout; its entities were put into %2 space</source>
        <translation>所有者 %1 不是布局，其中的图元已放入%2空间</translation>
    </message>
    <message>
        <source>paper</source>
        <translation>图纸</translation>
    </message>
    <message>
        <source>model</source>
        <translation>模型</translation>
    </message>
    <message>
        <source>the block %1 has no block record of its own, one was made</source>
        <translation>块 %1 没有自己的块记录，已补上</translation>
    </message>
    <message>
        <source>%1, byte %2</source>
        <translation>%1，第 %2 字节</translation>
    </message>
    <message>
        <source>%1, line %2</source>
        <translation>%1 第 %2 行</translation>
    </message>
    <message>
        <source>left out, because DXF has no form for them: %1</source>
        <translation>DXF 无法表示而略去: %1</translation>
    </message>
    <message>
        <source>written as proxies, which other programs show but cannot edit: %1</source>
        <translation>写成代理对象，其他程序只能显示，不能编辑: %1</translation>
    </message>
    <message>
        <source>a group code is missing here, nothing behind it could be read</source>
        <translation>此处缺少组码，之后的内容无法读取</translation>
    </message>
    <message>
        <source>a group code is missing here, reading went on at byte %1</source>
        <translation>此处缺少组码，从字节 %1 继续读取</translation>
    </message>
    <message>
        <source>a group code is missing here, reading went on at line %1</source>
        <translation>此处缺少组码，从第 %1 行继续读取</translation>
    </message>
    <message>
        <source>the file ends inside a group</source>
        <translation>文件在一个组的中间结束</translation>
    </message>
    <message>
        <source>"%1" is no kind of object</source>
        <translation>“%1”不是对象种类</translation>
    </message>
    <message>
        <source>%1 stands %2, it is kept but not used</source>
        <translation>%1 位于%2，已保留但不使用</translation>
    </message>
    <message>
        <source>a group stands outside of any object</source>
        <translation>有一个组不属于任何对象</translation>
    </message>
    <message>
        <source>outside of any section</source>
        <translation>所有段之外</translation>
    </message>
    <message>
        <source>the objects kept in comments are damaged, what could be read of them is used</source>
        <translation>注释中保存的对象已损坏，能读出的部分已使用</translation>
    </message>
    <message>
        <source>the file ends without EOF</source>
        <translation>文件结尾没有 EOF</translation>
    </message>
    <message>
        <source>a section has no name</source>
        <translation>有一个段没有名称</translation>
    </message>
    <message>
        <source>the section %1 has no end</source>
        <translation>段 %1 没有结尾</translation>
    </message>
    <message>
        <source>among the classes</source>
        <translation>类定义之间</translation>
    </message>
    <message>
        <source>outside of any table</source>
        <translation>所有表之外</translation>
    </message>
    <message>
        <source>the table %1 has no end</source>
        <translation>表 %1 没有结尾</translation>
    </message>
    <message>
        <source>in the table %1</source>
        <translation>表 %1 中</translation>
    </message>
    <message>
        <source>%1 stands %2, it is used all the same</source>
        <translation>%1 位于%2，仍按原样使用</translation>
    </message>
    <message>
        <source>outside of any block</source>
        <translation>所有块之外</translation>
    </message>
    <message>
        <source>the block %1 has no end</source>
        <translation>块 %1 没有结尾</translation>
    </message>
    <message>
        <source>a part of a polyline or insert stands alone</source>
        <translation>有一个多段线或插入的组成部分单独存在</translation>
    </message>
    <message>
        <source>the file is empty</source>
        <translation>文件是空的</translation>
    </message>
    <message>
        <source>this is no DXF drawing, it has no section</source>
        <translation>这不是 DXF 图形，其中没有段</translation>
    </message>
    <message>
        <source>Byte %1: %2.</source>
        <translation>字节 %1: %2。</translation>
    </message>
    <message>
        <source>Line %1: %2.</source>
        <translation>第 %1 行: %2。</translation>
    </message>
    <message>
        <source>%1 more repairs are not listed.</source>
        <translation>另有 %1 处修正未列出。</translation>
    </message>
    <message>
        <source>it ends inside a group</source>
        <translation>在一个组的中间结束</translation>
    </message>
    <message>
        <source>it holds something that is no group and no object</source>
        <translation>其中有既不是组也不是对象的内容</translation>
    </message>
    <message>
        <source>its end is missing</source>
        <translation>缺少结尾</translation>
    </message>
    <message>
        <source>%1 is missing</source>
        <translation>缺少 %1</translation>
    </message>
    <message>
        <source>it was stopped</source>
        <translation>已停止</translation>
    </message>
    <message>
        <source>the drawing did not come from a DXF file</source>
        <translation>该图形不是来自 DXF 文件</translation>
    </message>
    <message>
        <source>objects are missing</source>
        <translation>缺少对象</translation>
    </message>
</context>
</TS>
