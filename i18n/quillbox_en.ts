<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="en" sourcelanguage="zh_CN">
<context>
    <name>AboutDialog</name>
    <message>
        <source>关于 Quillbox</source>
        <translation>About Quillbox</translation>
    </message>
    <message>
        <source>视频下载管理器</source>
        <translation>Video download manager</translation>
    </message>
</context>
<context>
    <name>AppState</name>
    <message numerus="yes">
        <source>…（已省略 %n 个字符）</source>
        <translation>
            <numerusform>… (%n character omitted)</numerusform>
            <numerusform>… (%n characters omitted)</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%n 行不是链接</source>
        <translation>
            <numerusform>%n line not a link</numerusform>
            <numerusform>%n lines not links</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%n 行过长</source>
        <translation>
            <numerusform>%n line too long</numerusform>
            <numerusform>%n lines too long</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%n 个链接超过 %1 个的上限</source>
        <translation>
            <numerusform>%n link over the limit of %1</numerusform>
            <numerusform>%n links over the limit of %1</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>从%1收到 %n 个链接</source>
        <extracomment>%1 is where they came from, said by the caller: &quot;拖放&quot;, &quot;剪贴板&quot;, &quot;命令行&quot;, &quot;文件 a.txt &quot;</extracomment>
        <translation>
            <numerusform>Received %n link from %1</numerusform>
            <numerusform>Received %n links from %1</numerusform>
        </translation>
    </message>
    <message>
        <source>，</source>
        <extracomment>Between the reasons of a list, as &quot;，&quot; is in Chinese</extracomment>
        <translation>, </translation>
    </message>
    <message>
        <source>（未采用：%1）</source>
        <translation> (left out: %1)</translation>
    </message>
</context>
<context>
    <name>ClipboardWatcher</name>
    <message>
        <source>剪贴板</source>
        <extracomment>Where links came from, in &quot;从%1收到 %n 个链接&quot;</extracomment>
        <translation>the clipboard</translation>
    </message>
</context>
<context>
    <name>CommandLine</name>
    <message>
        <source>未知的选项：%1（quillbox --help 列出可用的选项）</source>
        <translation>Unknown option: %1 (quillbox --help lists the available options)</translation>
    </message>
    <message>
        <source>用法：quillbox [--start] [链接 | quillbox://add?url=…]…

把链接放进 Quillbox 的链接框；Quillbox 已在运行时交给它的窗口。

  --start      用当前的预设和选项直接开始下载
  --version    显示版本
  --help       显示这段说明
</source>
        <translation>Usage: quillbox [--start] [link | quillbox://add?url=…]…

Puts the links into Quillbox&apos;s links box; when Quillbox is already running, hands them to its window.

  --start      start downloading right away with the current preset and options
  --version    show the version
  --help       show this help
</translation>
    </message>
    <message>
        <source>Quillbox 已在运行，但没有回应；链接已交给它，它恢复后会收到。
</source>
        <translation>Quillbox is already running but not responding; the links were handed to it and it will receive them when it recovers.
</translation>
    </message>
    <message>
        <source>另一个 Quillbox 正在启动，但没有回应；链接没有交出。
</source>
        <translation>Another Quillbox is starting but not responding; the links were not handed over.
</translation>
    </message>
</context>
<context>
    <name>ConfirmDialog</name>
    <message>
        <source>确定</source>
        <translation>OK</translation>
    </message>
    <message>
        <source>取消</source>
        <translation>Cancel</translation>
    </message>
</context>
<context>
    <name>CookieCheck</name>
    <message>
        <source>哔哩哔哩</source>
        <translation>Bilibili</translation>
    </message>
    <message>
        <source>其中没有 %1 的登录 Cookie：请先在浏览器中登录 %1，再检查一次。</source>
        <translation>There is no %1 sign-in cookie among them: sign in to %1 in the browser first, then check again.</translation>
    </message>
    <message>
        <source>、</source>
        <translation>, </translation>
    </message>
    <message>
        <source>%1 的登录 Cookie（%2）已于 %3 过期：请在浏览器中重新登录 %1。</source>
        <translation>The %1 sign-in cookies (%2) expired on %3: sign in to %1 again in the browser.</translation>
    </message>
    <message>
        <source>找到 %1 的登录 Cookie（%2），是会话 Cookie，关闭浏览器后失效。</source>
        <translation>Found the %1 sign-in cookies (%2). They are session cookies and stop working when the browser is closed.</translation>
    </message>
    <message>
        <source>找到 %1 的登录 Cookie（%2），有效期至 %3。</source>
        <translation>Found the %1 sign-in cookies (%2), valid until %3.</translation>
    </message>
    <message>
        <source>请先选择浏览器或 Cookie 文件。</source>
        <translation>Choose a browser or a cookie file first.</translation>
    </message>
    <message>
        <source>找不到 yt-dlp，无法检查 Cookie：请安装 yt-dlp，或在“设置”中指定它的路径。</source>
        <translation>yt-dlp was not found, so the cookies cannot be checked: install yt-dlp, or set its path in &quot;Settings&quot;.</translation>
    </message>
    <message>
        <source>检查没有完成：%1</source>
        <translation>The check did not finish: %1</translation>
    </message>
    <message>
        <source>找不到 %1 的 Cookie 数据库：这台电脑上可能没有安装它，或从未用它登录过网站。请换一个浏览器，或使用 Cookie 文件。</source>
        <translation>The %1 cookie database was not found: it may not be installed on this computer, or never used to sign in to a site. Choose another browser, or use a cookie file.</translation>
    </message>
    <message>
        <source>%1 的 Cookie 数据库被锁定：浏览器正在使用它。请关闭 %1 后再检查。</source>
        <translation>The %1 cookie database is locked because the browser is using it. Quit %1, then check again.</translation>
    </message>
    <message>
        <source>%1 的 Cookie 无法解密：系统钥匙串没有提供密钥（钥匙串被拒绝、已锁定或不可用）。请解锁钥匙串并允许访问，或改用 Cookie 文件。</source>
        <translation>The %1 cookies cannot be decrypted: the system keychain gave no key (access was denied, or the keychain is locked or unavailable). Unlock the keychain and allow access, or use a cookie file instead.</translation>
    </message>
    <message>
        <source>Cookie 文件不是 Netscape 格式（cookies.txt），yt-dlp 无法使用：请重新导出，或选择另一个文件。</source>
        <translation>The cookie file is not in Netscape format (cookies.txt), so yt-dlp cannot use it: export it again, or choose another file.</translation>
    </message>
    <message>
        <source>找不到这个 Cookie 文件：请重新选择。</source>
        <translation>This cookie file was not found: choose it again.</translation>
    </message>
    <message>
        <source>yt-dlp 读不出 %1 的 Cookie。</source>
        <translation>yt-dlp could not read the %1 cookies.</translation>
    </message>
    <message numerus="yes">
        <source>yt-dlp 从 %1 读到 %n 个 Cookie。</source>
        <translation>
            <numerusform>yt-dlp read %n cookie from %1.</numerusform>
            <numerusform>yt-dlp read %n cookies from %1.</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>另有 %n 个无法解密，已跳过（系统钥匙串没有提供密钥）。</source>
        <translation>
            <numerusform> %n more could not be decrypted and was skipped (the system keychain gave no key).</numerusform>
            <numerusform> %n more could not be decrypted and were skipped (the system keychain gave no key).</numerusform>
        </translation>
    </message>
    <message>
        <source>读取时系统钥匙串不可用，部分 Cookie 可能没有读到。</source>
        <translation> The system keychain was unavailable while reading, so some cookies may be missing.</translation>
    </message>
    <message>
        <source>Cookie 文件</source>
        <translation>Cookie file</translation>
    </message>
    <message>
        <source>无法创建临时文件夹：%1</source>
        <translation>Cannot create a temporary folder: %1</translation>
    </message>
    <message>
        <source>yt-dlp 异常退出</source>
        <translation>yt-dlp crashed</translation>
    </message>
</context>
<context>
    <name>CookieError</name>
    <message>
        <source>Cookie 提取失败: %1</source>
        <translation>Cookie export failed: %1</translation>
    </message>
    <message>
        <source>未找到 Chrome 浏览器。请确保已安装 Google Chrome。</source>
        <translation>Chrome was not found. Make sure Google Chrome is installed.</translation>
    </message>
    <message>
        <source>未找到可用的 cookies。请先登录要下载的视频网站。</source>
        <translation>No usable cookies were found. Sign in to the video site you want to download from first.</translation>
    </message>
    <message>
        <source>无法写入 Python 脚本 %1: %2</source>
        <translation>Cannot write the Python script %1: %2</translation>
    </message>
    <message>
        <source>无法启动 Python: %1</source>
        <translation>Cannot start Python: %1</translation>
    </message>
    <message>
        <source>无法读写 cookie 文件: %1</source>
        <translation>Cannot read or write the cookie file: %1</translation>
    </message>
    <message>
        <source>无法读取 cookie 文件: %1</source>
        <translation>Cannot read the cookie file: %1</translation>
    </message>
    <message>
        <source>无法写入 sqlite3 脚本 %1: %2</source>
        <translation>Cannot write the sqlite3 script %1: %2</translation>
    </message>
    <message>
        <source>无法启动 %1: %2</source>
        <translation>Cannot start %1: %2</translation>
    </message>
    <message>
        <source>无法写入 cookie 文件 %1: %2</source>
        <translation>Cannot write the cookie file %1: %2</translation>
    </message>
</context>
<context>
    <name>CookieFile</name>
    <message>
        <source>文件过大，不像 Cookie 文件</source>
        <translation>The file is too large to be a cookie file</translation>
    </message>
    <message>
        <source>文件中没有 Cookie</source>
        <translation>The file holds no cookies</translation>
    </message>
</context>
<context>
    <name>CookieFileDialog</name>
    <message>
        <source>选择 Cookie 文件</source>
        <translation>Choose a cookie file</translation>
    </message>
    <message>
        <source>Cookie 文件 (*.txt)</source>
        <translation>Cookie files (*.txt)</translation>
    </message>
    <message>
        <source>所有文件 (*)</source>
        <translation>All files (*)</translation>
    </message>
</context>
<context>
    <name>CookieManagerView</name>
    <message>
        <source>Cookie 管理</source>
        <translation>Cookies</translation>
    </message>
    <message>
        <source>需要登录的视频（会员、年龄限制、“确认你不是机器人”）要用已登录浏览器的 Cookie 下载。</source>
        <translation>Videos that require signing in (members only, age-restricted, &quot;confirm you&apos;re not a bot&quot;) must be downloaded with the cookies of a browser where you are signed in.</translation>
    </message>
    <message>
        <source>下载使用的 Cookie</source>
        <translation>Cookies for downloads</translation>
    </message>
    <message>
        <source>不使用</source>
        <translation>None</translation>
    </message>
    <message>
        <source>从浏览器读取</source>
        <translation>Read from browser</translation>
    </message>
    <message>
        <source>使用 Cookie 文件</source>
        <translation>Use cookie file</translation>
    </message>
    <message>
        <source>Netscape 格式的 cookies.txt</source>
        <translation>cookies.txt in Netscape format</translation>
    </message>
    <message>
        <source>浏览...</source>
        <translation>Browse...</translation>
    </message>
    <message>
        <source>输入面板的“Cookie”开关已关闭：下载暂不使用 Cookie。</source>
        <translation>The &quot;Cookie&quot; switch on the input panel is off: downloads use no cookies for now.</translation>
    </message>
    <message>
        <source>正在检查...</source>
        <translation>Checking...</translation>
    </message>
    <message>
        <source>检查 Cookie</source>
        <translation>Check cookies</translation>
    </message>
    <message>
        <source>登录网站</source>
        <translation>Sign-in site</translation>
    </message>
    <message>
        <source>让 yt-dlp 读取所选的 Cookie，不下载、不联网，看看它读到了什么。</source>
        <translation>Lets yt-dlp read the chosen cookies, without downloading or going online, to see what it finds.</translation>
    </message>
    <message>
        <source>导出 Chrome Cookie</source>
        <translation>Export Chrome cookies</translation>
    </message>
    <message>
        <source>把 Chrome（或 Chromium）保存的 Cookie 导出为 Cookie 文件，只有你自己能读取。</source>
        <translation>Exports the cookies saved by Chrome (or Chromium) to a cookie file that only you can read.</translation>
    </message>
    <message>
        <source>正在导出...</source>
        <translation>Exporting...</translation>
    </message>
    <message>
        <source>用于下载</source>
        <translation>Use for downloads</translation>
    </message>
    <message>
        <source>如何获取 Cookie</source>
        <translation>How to get cookies</translation>
    </message>
    <message>
        <source>当前 Cookie 文件</source>
        <translation>Current cookie file</translation>
    </message>
    <message>
        <source>未选择 Cookie 文件</source>
        <translation>No cookie file chosen</translation>
    </message>
    <message>
        <source>重新读取</source>
        <translation>Reload</translation>
    </message>
    <message numerus="yes">
        <source>%n 个网站的 Cookie 已过期，请重新登录后再导出。</source>
        <translation>
            <numerusform>The cookies for %n site have expired. Sign in again before you export them.</numerusform>
            <numerusform>The cookies for %n sites have expired. Sign in again before you export them.</numerusform>
        </translation>
    </message>
    <message>
        <source>已过期</source>
        <translation>Expired</translation>
    </message>
</context>
<context>
    <name>CookiePagePresenter</name>
    <message numerus="yes">
        <source>%n 个 Cookie，已于 %1 过期</source>
        <translation>
            <numerusform>%n cookie, expired on %1</numerusform>
            <numerusform>%n cookies, expired on %1</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%n 个 Cookie，有效期至 %1</source>
        <translation>
            <numerusform>%n cookie, valid until %1</numerusform>
            <numerusform>%n cookies, valid until %1</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%n 个 Cookie，会话 Cookie</source>
        <translation>
            <numerusform>%n cookie, a session cookie</numerusform>
            <numerusform>%n cookies, session cookies</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>（其中 %n 个已过期）</source>
        <translation>
            <numerusform> (%n of them expired)</numerusform>
            <numerusform> (%n of them expired)</numerusform>
        </translation>
    </message>
    <message>
        <source>%1（没有 Cookie）</source>
        <translation>%1 (no cookies)</translation>
    </message>
    <message>
        <source>%1（未找到）</source>
        <translation>%1 (not found)</translation>
    </message>
    <message>
        <source>、</source>
        <extracomment>Between the items of a list, as &quot;、&quot; is in Chinese: &quot;Chrome、Firefox&quot;
----------
Between the items of a list, as &quot;、&quot; is in Chinese: &quot;youtube.com、bilibili.com&quot;</extracomment>
        <translation>, </translation>
    </message>
    <message>
        <source>%1 已安装，但还没有 Cookie：先在浏览器中登录要下载的网站，再回来选择。</source>
        <translation>Installed, but no cookies yet: %1. Sign in to the site you want to download from in the browser first, then come back and choose it.</translation>
    </message>
    <message>
        <source>找不到这个文件</source>
        <translation>File not found</translation>
    </message>
    <message>
        <source>读不出 Cookie：%1</source>
        <translation>Cannot read cookies: %1</translation>
    </message>
    <message>
        <source>已导出 %1，来自 %2</source>
        <extracomment>%1 is &quot;%n 个 Cookie&quot;, %2 is &quot;%n 个网站&quot;</extracomment>
        <translation>Exported %1 from %2</translation>
    </message>
    <message numerus="yes">
        <source>%n 个 Cookie</source>
        <translation>
            <numerusform>%n cookie</numerusform>
            <numerusform>%n cookies</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%n 个网站</source>
        <translation>
            <numerusform>%n site</numerusform>
            <numerusform>%n sites</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>；%n 个加密的 Cookie 无法解密，已跳过</source>
        <translation>
            <numerusform>; %n encrypted cookie could not be decrypted and was skipped</numerusform>
            <numerusform>; %n encrypted cookies could not be decrypted and were skipped</numerusform>
        </translation>
    </message>
    <message>
        <source>%1 等</source>
        <extracomment>After a list that goes on: &quot;a、b、c 等&quot;</extracomment>
        <translation>%1 and more</translation>
    </message>
</context>
<context>
    <name>CookieWords</name>
    <message>
        <source>⚠️ 未选择 Cookie 文件，本次不使用 Cookie（可在“Cookie 管理”中选择）</source>
        <translation>⚠️ No cookie file chosen, so no cookies are used this time (choose one in &quot;Cookies&quot;)</translation>
    </message>
    <message>
        <source>⚠️ Cookie 文件不存在: %1，本次不使用 Cookie</source>
        <translation>⚠️ The cookie file does not exist: %1, so no cookies are used this time</translation>
    </message>
    <message>
        <source>使用 Cookie 文件: %1</source>
        <translation>Using the cookie file: %1</translation>
    </message>
    <message>
        <source>使用 %1 浏览器 Cookie</source>
        <translation>Using %1&apos;s browser cookies</translation>
    </message>
    <message>
        <source>⚠️ 未找到 %1 浏览器的 Cookie 数据库，本次不使用浏览器 Cookie</source>
        <translation>⚠️ The %1 cookie database was not found, so no browser cookies are used this time</translation>
    </message>
</context>
<context>
    <name>Desktop</name>
    <message>
        <source>退出码 %1</source>
        <translation>exit code %1</translation>
    </message>
    <message>
        <source>没有可以打开此文件夹的程序（%1）</source>
        <translation>No application can open this folder (%1)</translation>
    </message>
    <message>
        <source>没有可以打开此文件的程序（%1）</source>
        <translation>No application can open this file (%1)</translation>
    </message>
    <message>
        <source>无法打开此文件夹（%1）</source>
        <translation>Cannot open this folder (%1)</translation>
    </message>
    <message>
        <source>无法打开此文件（%1）</source>
        <translation>Cannot open this file (%1)</translation>
    </message>
    <message>
        <source>找不到用来打开文件的程序（%1）</source>
        <translation>Cannot find the program that opens files (%1)</translation>
    </message>
    <message>
        <source>无法启动 %1：临时文件夹不可写</source>
        <translation>Cannot start %1: the temporary folder is not writable</translation>
    </message>
    <message>
        <source>无法启动 %1</source>
        <translation>Cannot start %1</translation>
    </message>
    <message>
        <source>文件已不存在：%1</source>
        <translation>The file no longer exists: %1</translation>
    </message>
    <message>
        <source>文件夹已不存在：%1</source>
        <translation>The folder no longer exists: %1</translation>
    </message>
</context>
<context>
    <name>DownloadChoices</name>
    <message>
        <source>封面</source>
        <translation>thumbnail</translation>
    </message>
    <message>
        <source>元数据</source>
        <translation>metadata</translation>
    </message>
    <message>
        <source>章节</source>
        <translation>chapters</translation>
    </message>
    <message>
        <source>代理地址应形如 http://127.0.0.1:7890 或 socks5://127.0.0.1:1080</source>
        <translation>The proxy address should look like http://127.0.0.1:7890 or socks5://127.0.0.1:1080</translation>
    </message>
    <message>
        <source>限速应是大于 0 的数字</source>
        <translation>The rate limit must be a number greater than 0</translation>
    </message>
    <message>
        <source>文件名模板写在输出目录之下，不能以 / 或 ~ 开头</source>
        <translation>The filename template is relative to the output folder and cannot start with / or ~</translation>
    </message>
    <message>
        <source>文件名模板不能用 .. 离开输出目录</source>
        <translation>The filename template cannot use .. to leave the output folder</translation>
    </message>
    <message>
        <source>文件名模板只能有一行</source>
        <translation>The filename template must be a single line</translation>
    </message>
    <message>
        <source>到处都能播放</source>
        <translation>Plays everywhere</translation>
    </message>
    <message>
        <source>画质最佳</source>
        <translation>Highest quality</translation>
    </message>
    <message>
        <source>体积最小</source>
        <translation>Smallest size</translation>
    </message>
    <message>
        <source>嵌入字幕</source>
        <translation>Embed subtitles</translation>
    </message>
    <message>
        <source>下载字幕</source>
        <translation>Download subtitles</translation>
    </message>
    <message>
        <source>嵌入字幕 %1</source>
        <translation>Embed subtitles %1</translation>
    </message>
    <message>
        <source>下载字幕 %1</source>
        <translation>Download subtitles %1</translation>
    </message>
    <message>
        <source>、</source>
        <extracomment>Between the items of a list, as &quot;、&quot; is in Chinese: &quot;封面、元数据&quot;</extracomment>
        <translation>, </translation>
    </message>
    <message>
        <source>嵌入%1</source>
        <translation>Embed %1</translation>
    </message>
    <message>
        <source>SponsorBlock 移除</source>
        <translation>SponsorBlock: remove</translation>
    </message>
    <message>
        <source>SponsorBlock 标记</source>
        <translation>SponsorBlock: mark</translation>
    </message>
    <message>
        <source>限速 %1</source>
        <translation>Rate limit %1</translation>
    </message>
    <message>
        <source>（无效）</source>
        <extracomment>Said instead of the proxy&apos;s kind (&quot;SOCKS5&quot;) when the address is not a proxy&apos;s</extracomment>
        <translation>(invalid)</translation>
    </message>
    <message>
        <source>代理 %1</source>
        <translation>Proxy %1</translation>
    </message>
    <message>
        <source>文件名 %1</source>
        <translation>Filename %1</translation>
    </message>
    <message>
        <source>下载存档</source>
        <translation>Download archive</translation>
    </message>
    <message>
        <source>未设置</source>
        <translation>Not set</translation>
    </message>
</context>
<context>
    <name>DownloadInputView</name>
    <message>
        <source>错误</source>
        <translation>Error</translation>
    </message>
    <message numerus="yes">
        <source>已加入 %n 个下载</source>
        <translation>
            <numerusform>Added %n download</numerusform>
            <numerusform>Added %n downloads</numerusform>
        </translation>
    </message>
    <message>
        <source>这个视频链接还带有一个播放列表。</source>
        <translation>This video link also includes a playlist.</translation>
    </message>
    <message>
        <source>这 %1 个视频链接还带有播放列表。</source>
        <translation>These %1 video links also include playlists.</translation>
    </message>
    <message>
        <source>只下载这个视频</source>
        <translation>Download only the video</translation>
    </message>
    <message>
        <source>下载整个列表</source>
        <translation>Download whole playlist</translation>
    </message>
    <message>
        <source>这个链接已在队列中，要再加入一次吗？</source>
        <translation>This link is already in the queue. Add it again?</translation>
    </message>
    <message>
        <source>这 %1 个链接都已在队列中，要再加入一次吗？</source>
        <translation>These %1 links are all already in the queue. Add them again?</translation>
    </message>
    <message>
        <source>再次加入</source>
        <translation>Add again</translation>
    </message>
    <message>
        <source>添加下载任务</source>
        <translation>Add downloads</translation>
    </message>
    <message numerus="yes">
        <source>剪贴板中有 %n 个新链接</source>
        <translation>
            <numerusform>%n new link on the clipboard</numerusform>
            <numerusform>%n new links on the clipboard</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>添加 %n 个链接</source>
        <translation>
            <numerusform>Add %n link</numerusform>
            <numerusform>Add %n links</numerusform>
        </translation>
    </message>
    <message>
        <source>忽略</source>
        <translation>Ignore</translation>
    </message>
    <message>
        <source>自定义参数</source>
        <translation>Custom arguments</translation>
    </message>
    <message>
        <source>输入 yt-dlp 的自定义参数，使用空格分隔</source>
        <translation>Enter custom yt-dlp arguments, separated by spaces</translation>
    </message>
    <message>
        <source>播放列表</source>
        <translation>Playlist</translation>
    </message>
    <message>
        <source>查看可用格式</source>
        <translation>List formats</translation>
    </message>
    <message>
        <source>视频信息</source>
        <translation>Video info</translation>
    </message>
    <message>
        <source>开始下载</source>
        <translation>Start download</translation>
    </message>
    <message>
        <source>取消</source>
        <translation>Cancel</translation>
    </message>
</context>
<context>
    <name>DownloadManager</name>
    <message numerus="yes">
        <source>开始下载播放列表「%1」中的 %n 项</source>
        <translation>
            <numerusform>Starting download of %n item from the playlist &quot;%1&quot;</numerusform>
            <numerusform>Starting download of %n items from the playlist &quot;%1&quot;</numerusform>
        </translation>
    </message>
    <message>
        <source>预设: %1</source>
        <translation>Preset: %1</translation>
    </message>
    <message>
        <source>⚠️ 无法列出播放列表中的视频（%1），整个链接作为一个任务下载: %2</source>
        <translation>⚠️ Cannot list the videos in the playlist (%1); downloading the whole link as one download: %2</translation>
    </message>
    <message>
        <source>开始下载任务</source>
        <translation>Starting download</translation>
    </message>
    <message>
        <source>构建下载命令...</source>
        <translation>Building the download command...</translation>
    </message>
    <message>
        <source>JS 运行时: %1</source>
        <translation>JavaScript runtime: %1</translation>
    </message>
    <message>
        <source>只下载当前视频</source>
        <translation>Downloading only this video</translation>
    </message>
    <message>
        <source>预设参数: %1</source>
        <translation>Preset arguments: %1</translation>
    </message>
    <message>
        <source>下载选项: %1</source>
        <translation>Download options: %1</translation>
    </message>
    <message>
        <source>执行命令: %1</source>
        <translation>Running command: %1</translation>
    </message>
    <message>
        <source>未设置输出目录</source>
        <translation>No output folder is set</translation>
    </message>
    <message>
        <source>输出目录必须是完整路径: %1</source>
        <translation>The output folder must be a full path: %1</translation>
    </message>
    <message>
        <source>无法创建下载存档所在的目录: %1</source>
        <translation>Cannot create the folder for the download archive: %1</translation>
    </message>
    <message>
        <source>无法创建输出目录: %1</source>
        <translation>Cannot create the output folder: %1</translation>
    </message>
    <message>
        <source>已删除未完成的转换文件: %1</source>
        <translation>Deleted unfinished conversion file: %1</translation>
    </message>
    <message>
        <source>✅ 下载完成！</source>
        <translation>✅ Download complete</translation>
    </message>
    <message>
        <source>已在下载存档中，未再下载: %1</source>
        <translation>Already in the download archive, not downloaded again: %1</translation>
    </message>
    <message>
        <source>⚠️ 没有下载任何文件: %1</source>
        <translation>⚠️ No file was downloaded: %1</translation>
    </message>
    <message>
        <source>已在下载存档中，未再下载</source>
        <translation>Already in the download archive, not downloaded again</translation>
    </message>
    <message>
        <source>没有下载任何文件</source>
        <translation>No file was downloaded</translation>
    </message>
    <message>
        <source>❌ 下载失败 (错误码: %1)</source>
        <translation>❌ Download failed (error code: %1)</translation>
    </message>
    <message>
        <source>下载失败 (错误码: %1)</source>
        <translation>Download failed (error code: %1)</translation>
    </message>
    <message numerus="yes">
        <source>%n 秒无响应</source>
        <translation>
            <numerusform>No response for %n second</numerusform>
            <numerusform>No response for %n seconds</numerusform>
        </translation>
    </message>
    <message>
        <source>⚠️ %1：%2</source>
        <translation>⚠️ %1: %2</translation>
    </message>
    <message>
        <source>⏹ 已停止: %1</source>
        <translation>⏹ Stopped: %1</translation>
    </message>
    <message>
        <source>▶ 继续: %1</source>
        <translation>▶ Resuming: %1</translation>
    </message>
    <message>
        <source>🔄 重试: %1</source>
        <translation>🔄 Retrying: %1</translation>
    </message>
    <message numerus="yes">
        <source>⏹ 已停止播放列表中的 %n 项</source>
        <translation>
            <numerusform>⏹ Stopped %n item in the playlist</numerusform>
            <numerusform>⏹ Stopped %n items in the playlist</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>↺ 已恢复上次的 %n 个任务</source>
        <translation>
            <numerusform>↺ Restored %n download from last time</numerusform>
            <numerusform>↺ Restored %n downloads from last time</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>▶ 继续上次未完成的 %n 个下载</source>
        <translation>
            <numerusform>▶ Resuming %n unfinished download from last time</numerusform>
            <numerusform>▶ Resuming %n unfinished downloads from last time</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>⏸ 上次未完成的 %n 个下载未自动继续（设置中“启动时继续未完成的下载”已关闭），点“继续”可接着下载</source>
        <translation>
            <numerusform>⏸ %n unfinished download from last time was not resumed automatically (&quot;Resume unfinished downloads at startup&quot; is off in Settings); click &quot;Resume&quot; to carry on</numerusform>
            <numerusform>⏸ %n unfinished downloads from last time were not resumed automatically (&quot;Resume unfinished downloads at startup&quot; is off in Settings); click &quot;Resume&quot; to carry on</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>⏹ 已取消 %n 个等待中的任务</source>
        <translation>
            <numerusform>⏹ Cancelled %n waiting download</numerusform>
            <numerusform>⏹ Cancelled %n waiting downloads</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>DownloadOptionsBody</name>
    <message>
        <source>兼容性</source>
        <translation>Compatibility</translation>
    </message>
    <message>
        <source>不限</source>
        <translation>No limit</translation>
    </message>
    <message>
        <source>到处都能播放</source>
        <translation>Plays everywhere</translation>
    </message>
    <message>
        <source>画质最佳</source>
        <translation>Highest quality</translation>
    </message>
    <message>
        <source>体积最小</source>
        <translation>Smallest size</translation>
    </message>
    <message>
        <source>优先 H.264 视频和 AAC 音频，合并为 MP4：QuickTime、剪辑软件和手机都能打开；没有时下载现有的格式</source>
        <translation>Prefers H.264 video and AAC audio, merged into MP4: QuickTime, video editors and phones can all open it; when there are none, downloads the formats available</translation>
    </message>
    <message>
        <source>优先分辨率、帧率和码率最高的格式</source>
        <translation>Prefers the formats with the highest resolution, frame rate and bitrate</translation>
    </message>
    <message>
        <source>优先文件最小的格式</source>
        <translation>Prefers the formats with the smallest files</translation>
    </message>
    <message>
        <source>字幕</source>
        <translation>Subtitles</translation>
    </message>
    <message>
        <source>不要</source>
        <translation>None</translation>
    </message>
    <message>
        <source>下载字幕文件</source>
        <translation>Download subtitle files</translation>
    </message>
    <message>
        <source>嵌入视频</source>
        <translation>Embed in video</translation>
    </message>
    <message>
        <source>字幕格式</source>
        <translation>Subtitle format</translation>
    </message>
    <message>
        <source>原格式</source>
        <translation>Original</translation>
    </message>
    <message>
        <source>字幕语言</source>
        <translation>Subtitle languages</translation>
    </message>
    <message>
        <source>中文</source>
        <translation>Chinese</translation>
    </message>
    <message>
        <source>简体</source>
        <translation>Simplified</translation>
    </message>
    <message>
        <source>繁体</source>
        <translation>Traditional</translation>
    </message>
    <message>
        <source>英语</source>
        <translation>English</translation>
    </message>
    <message>
        <source>日语</source>
        <translation>Japanese</translation>
    </message>
    <message>
        <source>韩语</source>
        <translation>Korean</translation>
    </message>
    <message>
        <source>全部</source>
        <translation>All</translation>
    </message>
    <message>
        <source>包括自动生成的字幕</source>
        <translation>Include auto-generated subtitles</translation>
    </message>
    <message>
        <source>嵌入</source>
        <translation>Embed</translation>
    </message>
    <message>
        <source>封面</source>
        <translation>Thumbnail</translation>
    </message>
    <message>
        <source>元数据</source>
        <translation>Metadata</translation>
    </message>
    <message>
        <source>章节</source>
        <translation>Chapters</translation>
    </message>
    <message>
        <source>不用</source>
        <translation>Off</translation>
    </message>
    <message>
        <source>标记为章节</source>
        <translation>Mark as chapters</translation>
    </message>
    <message>
        <source>移除片段</source>
        <translation>Remove segments</translation>
    </message>
    <message>
        <source>赞助</source>
        <translation>Sponsor</translation>
    </message>
    <message>
        <source>片头</source>
        <translation>Intro</translation>
    </message>
    <message>
        <source>片尾</source>
        <translation>Outro</translation>
    </message>
    <message>
        <source>自我推广</source>
        <translation>Self-promotion</translation>
    </message>
    <message>
        <source>预告</source>
        <translation>Preview</translation>
    </message>
    <message>
        <source>题外话</source>
        <translation>Filler</translation>
    </message>
    <message>
        <source>互动提醒</source>
        <translation>Interaction reminder</translation>
    </message>
    <message>
        <source>非音乐部分</source>
        <translation>Non-music section</translation>
    </message>
    <message>
        <source>限速</source>
        <translation>Rate limit</translation>
    </message>
    <message>
        <source>限速单位</source>
        <translation>Rate limit unit</translation>
    </message>
    <message>
        <source>代理</source>
        <translation>Proxy</translation>
    </message>
    <message>
        <source>不用代理，例如 socks5://127.0.0.1:1080</source>
        <translation>No proxy, e.g. socks5://127.0.0.1:1080</translation>
    </message>
    <message>
        <source>%1 代理，链接信息、格式列表和下载都经过它</source>
        <translation>%1 proxy: link information, format lists and downloads all go through it</translation>
    </message>
    <message>
        <source>文件名</source>
        <translation>Filename</translation>
    </message>
    <message>
        <source>文件名模板</source>
        <translation>Filename template</translation>
    </message>
    <message>
        <source>标题</source>
        <translation>Title</translation>
    </message>
    <message>
        <source>上传者</source>
        <translation>Uploader</translation>
    </message>
    <message>
        <source>日期</source>
        <translation>Date</translation>
    </message>
    <message>
        <source>分辨率</source>
        <translation>Resolution</translation>
    </message>
    <message>
        <source>列表序号</source>
        <translation>Playlist index</translation>
    </message>
    <message>
        <source>扩展名</source>
        <translation>Extension</translation>
    </message>
    <message>
        <source>示例：%1</source>
        <translation>Example: %1</translation>
    </message>
    <message>
        <source>预览：%1</source>
        <translation>Preview: %1</translation>
    </message>
    <message>
        <source>下载存档</source>
        <translation>Download archive</translation>
    </message>
    <message>
        <source>跳过已经下载过的视频</source>
        <translation>Skip videos already downloaded</translation>
    </message>
    <message>
        <source>记录在 %1</source>
        <translation>Recorded in %1</translation>
    </message>
    <message>
        <source>全部清除</source>
        <translation>Clear all</translation>
    </message>
    <message>
        <source>不限</source>
        <comment>any compatibility</comment>
        <translation>Any</translation>
    </message>
</context>
<context>
    <name>DownloadOptionsPanel</name>
    <message>
        <source>下载选项：%1</source>
        <translation>Download options: %1</translation>
    </message>
    <message>
        <source>下载选项</source>
        <translation>Download options</translation>
    </message>
</context>
<context>
    <name>DownloadOptionsPresenter</name>
    <message>
        <source>示例视频</source>
        <translation>Example video</translation>
    </message>
    <message>
        <source>上传者</source>
        <translation>Uploader</translation>
    </message>
    <message>
        <source>示例列表</source>
        <translation>Example playlist</translation>
    </message>
</context>
<context>
    <name>DownloadOutput</name>
    <message>
        <source>合并中</source>
        <translation>Merging</translation>
    </message>
    <message>
        <source>转换音频中</source>
        <translation>Converting audio</translation>
    </message>
    <message>
        <source>后处理中</source>
        <translation>Post-processing</translation>
    </message>
</context>
<context>
    <name>DownloadPreset</name>
    <message>
        <source>默认</source>
        <translation>Default</translation>
    </message>
    <message>
        <source>最佳画质</source>
        <translation>Best quality</translation>
    </message>
    <message>
        <source>最佳音质</source>
        <translation>Best audio</translation>
    </message>
    <message>
        <source>最佳视频+音频</source>
        <translation>Best video + audio</translation>
    </message>
    <message>
        <source>仅音频</source>
        <translation>Audio only</translation>
    </message>
    <message>
        <source>自定义</source>
        <translation>Custom</translation>
    </message>
</context>
<context>
    <name>DownloadQueueView</name>
    <message>
        <source>下载队列</source>
        <translation>Download queue</translation>
    </message>
    <message>
        <source>清除已完成</source>
        <translation>Clear completed</translation>
    </message>
    <message>
        <source>全部停止</source>
        <translation>Stop all</translation>
    </message>
    <message>
        <source>查找：标题、链接或状态</source>
        <translation>Find: title, link or status</translation>
    </message>
    <message>
        <source>暂无下载任务</source>
        <translation>No downloads yet</translation>
    </message>
    <message>
        <source>在上方输入视频链接开始下载</source>
        <translation>Enter video links above to start downloading</translation>
    </message>
    <message>
        <source>没有找到匹配的任务</source>
        <translation>No matching downloads</translation>
    </message>
</context>
<context>
    <name>DownloadStatus</name>
    <message>
        <source>等待中</source>
        <translation>Waiting</translation>
    </message>
    <message>
        <source>准备中</source>
        <translation>Preparing</translation>
    </message>
    <message>
        <source>下载中</source>
        <translation>Downloading</translation>
    </message>
    <message>
        <source>已完成</source>
        <translation>Completed</translation>
    </message>
    <message>
        <source>失败</source>
        <translation>Failed</translation>
    </message>
    <message>
        <source>已取消</source>
        <translation>Cancelled</translation>
    </message>
    <message>
        <source>已暂停</source>
        <translation>Paused</translation>
    </message>
</context>
<context>
    <name>DownloadTaskRow</name>
    <message>
        <source>停止</source>
        <translation>Stop</translation>
    </message>
    <message>
        <source>继续</source>
        <translation>Resume</translation>
    </message>
    <message>
        <source>重试</source>
        <translation>Retry</translation>
    </message>
    <message>
        <source>打开文件</source>
        <translation>Open file</translation>
    </message>
    <message>
        <source>在文件夹中显示</source>
        <translation>Show in folder</translation>
    </message>
    <message>
        <source>视频信息</source>
        <translation>Video info</translation>
    </message>
    <message>
        <source>复制链接</source>
        <translation>Copy link</translation>
    </message>
    <message>
        <source>移除</source>
        <translation>Remove</translation>
    </message>
    <message>
        <source>%2，%1</source>
        <translation>%2, %1</translation>
    </message>
    <message>
        <source>修复</source>
        <translation>Fix</translation>
    </message>
    <message>
        <source>隐藏原始输出</source>
        <translation>Hide raw output</translation>
    </message>
    <message>
        <source>显示原始输出</source>
        <translation>Show raw output</translation>
    </message>
    <message>
        <source>已复制</source>
        <translation>Copied</translation>
    </message>
    <message>
        <source>复制错误信息</source>
        <translation>Copy error message</translation>
    </message>
    <message>
        <source>已复制链接</source>
        <translation>Link copied</translation>
    </message>
</context>
<context>
    <name>ErrorExplanation</name>
    <message>
        <source>然后在“设置”中重新检测。</source>
        <translation>then click &quot;Detect again&quot; in &quot;Settings&quot;.</translation>
    </message>
    <message>
        <source>请在“设置”中更新 yt-dlp，%1</source>
        <translation>Update yt-dlp in &quot;Settings&quot;, %1</translation>
    </message>
    <message>
        <source>请在“Cookie 管理”中选择已登录该网站的浏览器或 Cookie 文件，并打开“Cookie”开关后重试。</source>
        <translation>In &quot;Cookies&quot;, choose a browser that is signed in to this site or a cookie file, turn on the &quot;Cookie&quot; switch, and try again.</translation>
    </message>
    <message>
        <source>JavaScript 运行时不受支持：yt-dlp 不能使用这台电脑上的运行时（版本太旧或名称不对）来解析 YouTube 视频。请安装或升级 Deno（https://deno.com），%1</source>
        <translation>Unsupported JavaScript runtime: yt-dlp cannot use the runtime on this computer (too old, or not the right name) to process YouTube videos. Install or upgrade Deno (https://deno.com), %1</translation>
    </message>
    <message>
        <source>缺少 JavaScript 运行时：YouTube 需要它来解析视频。请安装 Deno（https://deno.com），%1</source>
        <translation>JavaScript runtime missing: YouTube needs one to process videos. Install Deno (https://deno.com), %1</translation>
    </message>
    <message>
        <source>没能解开 YouTube 的验证（n challenge）：需要可用的 JavaScript 运行时和较新的 yt-dlp。请安装 Deno（https://deno.com），并在“设置”中更新 yt-dlp，%1</source>
        <translation>Could not solve YouTube&apos;s challenge (n challenge): this needs a working JavaScript runtime and a recent yt-dlp. Install Deno (https://deno.com) and update yt-dlp in &quot;Settings&quot;, %1</translation>
    </message>
    <message>
        <source>yt-dlp 版本太旧，解不开 YouTube 的验证（nsig）：下载会被拒绝或缺少格式。%1</source>
        <translation>yt-dlp is too old to solve YouTube&apos;s challenge (nsig): downloads are refused or formats are missing. %1</translation>
    </message>
    <message>
        <source>yt-dlp 版本太旧，跟不上网站的变化：只拿到了预览图，没有视频格式。%1</source>
        <translation>yt-dlp is too old to keep up with changes to the site: it got only preview images, no video formats. %1</translation>
    </message>
    <message>
        <source>字幕下载失败：yt-dlp 没能取得“%1”字幕，因此整个下载停止了，视频没有下载。请在“下载选项”中关闭字幕或换一种语言后重试。</source>
        <translation>Subtitle download failed: yt-dlp could not get the &quot;%1&quot; subtitles, so the whole download stopped and the video was not downloaded. Turn off subtitles or choose another language in &quot;Download options&quot;, then try again.</translation>
    </message>
    <message>
        <source>Cookie 文件无法使用：它不是 yt-dlp 接受的 Netscape 格式（cookies.txt）。请在“Cookie 管理”中重新导出 Chrome Cookie，或选择另一个 Cookie 文件。</source>
        <translation>Cookie file unusable: it is not in the Netscape format (cookies.txt) that yt-dlp accepts. In &quot;Cookies&quot;, export the Chrome cookies again or choose another cookie file.</translation>
    </message>
    <message>
        <source>读不到浏览器的 Cookie：所选浏览器的 Cookie 数据库找不到或无法读取。请在“Cookie 管理”中换一个浏览器或使用 Cookie 文件；浏览器正在运行时，关闭它后再试。</source>
        <translation>Cannot read the browser&apos;s cookies: the chosen browser&apos;s cookie database is missing or cannot be read. In &quot;Cookies&quot;, choose another browser or use a cookie file; if the browser is running, close it and try again.</translation>
    </message>
    <message>
        <source>Cookie 已失效：请在浏览器中重新登录该网站，然后在“Cookie 管理”中重新导出或选择该浏览器后重试。</source>
        <translation>The cookies are no longer valid: sign in to the site again in your browser, then in &quot;Cookies&quot; export them again or choose that browser, and try again.</translation>
    </message>
    <message>
        <source>需要登录：网站要求确认你不是机器人。%1YouTube 还需要 JavaScript 运行时（Deno）：请在“设置”中确认已检测到它。</source>
        <translation>Sign-in required: the site asks you to confirm you&apos;re not a bot. %1 YouTube also needs a JavaScript runtime (Deno): check in &quot;Settings&quot; that it has been detected.</translation>
    </message>
    <message>
        <source>需要登录：这个视频有年龄限制，只有登录的账号才能观看。%1</source>
        <translation>Sign-in required: this video is age-restricted and can only be watched from a signed-in account. %1</translation>
    </message>
    <message>
        <source>需要登录：这个视频仅对频道会员开放。%1</source>
        <translation>Sign-in required: this video is for channel members only. %1</translation>
    </message>
    <message>
        <source>需要登录：这是私享视频，只有获得授权的账号才能观看。%1</source>
        <translation>Sign-in required: this is a private video that only authorized accounts can watch. %1</translation>
    </message>
    <message>
        <source>需要登录：这个视频只对登录的用户开放。%1</source>
        <translation>Sign-in required: this video is only available to signed-in users. %1</translation>
    </message>
    <message>
        <source>地区限制：这个视频在你所在的地区不可用。可以在“下载选项”中填写代理后重试。</source>
        <translation>Region restricted: this video is not available in your region. You can enter a proxy in &quot;Download options&quot; and try again.</translation>
    </message>
    <message>
        <source>链接不存在或已删除（HTTP 404/410）：请检查链接是否完整、正确，或视频是否已被删除。</source>
        <translation>The link does not exist or was removed (HTTP 404/410): check that the link is complete and correct, or whether the video has been deleted.</translation>
    </message>
    <message>
        <source>访问被拒绝或请求过多（HTTP 403/429）：网站暂时拒绝了下载。请稍等一会儿再试，或在“设置”中调低“同时下载数”，也可以在“Cookie 管理”中使用 Cookie。</source>
        <translation>Access denied or too many requests (HTTP 403/429): the site is refusing the download for now. Wait a while and try again, or lower &quot;Simultaneous downloads&quot; in &quot;Settings&quot;; you can also use cookies in &quot;Cookies&quot;.</translation>
    </message>
    <message>
        <source>找不到 FFmpeg：提取音频和合并音视频都需要它。请安装 FFmpeg，%1</source>
        <translation>FFmpeg not found: it is needed both to extract audio and to merge video with audio. Install FFmpeg, %1</translation>
    </message>
    <message>
        <source>这个视频没有音轨，无法提取音频：请换用“默认”或“最佳画质”预设下载。</source>
        <translation>This video has no audio track, so no audio can be extracted: download it with the &quot;Default&quot; or &quot;Best quality&quot; preset instead.</translation>
    </message>
    <message>
        <source>没有所需的格式：这个视频不提供所选预设要求的格式。请换一个预设，或用“查看可用格式”查看后在自定义参数中选择。</source>
        <translation>Requested format not available: this video does not offer the format the chosen preset asks for. Choose another preset, or use &quot;List formats&quot; to see what is offered and pick one in the custom arguments.</translation>
    </message>
    <message>
        <source>文件名太长：视频标题超出了系统允许的长度。请选择“自定义”预设，加上 --trim-filenames 150 后重试。</source>
        <translation>Filename too long: the video title is longer than the system allows. Choose the &quot;Custom&quot; preset, add --trim-filenames 150 and try again.</translation>
    </message>
    <message>
        <source>磁盘空间不足：输出目录所在的磁盘已满。请清理空间，或换一个输出目录。</source>
        <translation>Not enough disk space: the disk that holds the output folder is full. Free up space, or choose another output folder.</translation>
    </message>
    <message>
        <source>无法写入输出目录：没有写入权限，或磁盘是只读的。请换一个可以写入的输出目录。</source>
        <translation>Cannot write to the output folder: there is no write permission, or the disk is read-only. Choose an output folder that can be written to.</translation>
    </message>
    <message>
        <source>FFmpeg 处理失败：转换或合并时出错。请在“设置”中确认 FFmpeg 可用，或换一个预设再试。</source>
        <translation>FFmpeg processing failed: an error occurred while converting or merging. Check in &quot;Settings&quot; that FFmpeg is available, or try another preset.</translation>
    </message>
    <message>
        <source>不是有效的链接：请确认它是视频页面的完整地址，以 http:// 或 https:// 开头。</source>
        <translation>Not a valid link: make sure it is the full address of a video page, starting with http:// or https://.</translation>
    </message>
    <message>
        <source>不支持的链接：yt-dlp 在这个页面上找不到可以下载的视频。请确认链接指向视频页面本身。</source>
        <translation>Unsupported link: yt-dlp cannot find a video to download on this page. Make sure the link points to the video page itself.</translation>
    </message>
    <message>
        <source>网络连接失败：对方拒绝了连接。请检查链接中的网址和端口，稍后再试。</source>
        <translation>Network connection failed: the server refused the connection. Check the address and port in the link, and try again later.</translation>
    </message>
    <message>
        <source>网络连接失败：无法解析网址中的域名。请检查网址拼写和网络连接。</source>
        <translation>Network connection failed: the domain name in the address could not be resolved. Check the spelling of the address and your network connection.</translation>
    </message>
    <message>
        <source>网络连接失败：连接超时。请检查网络或代理设置后重试。</source>
        <translation>Network connection failed: the connection timed out. Check your network or proxy settings and try again.</translation>
    </message>
    <message>
        <source>网络连接失败：连接中断。请检查网络后重试。</source>
        <translation>Network connection failed: the connection was interrupted. Check your network and try again.</translation>
    </message>
    <message>
        <source>参数无法识别：yt-dlp 不认识“%1”，通常是 yt-dlp 版本太旧。请在“设置”中更新 yt-dlp，或检查自定义参数。</source>
        <translation>Unrecognized argument: yt-dlp does not know &quot;%1&quot;, which usually means yt-dlp is too old. Update yt-dlp in &quot;Settings&quot;, or check the custom arguments.</translation>
    </message>
    <message>
        <source>yt-dlp 版本可能太旧，跟不上网站的变化：它读不懂这个页面。%1</source>
        <translation>yt-dlp may be too old to keep up with changes to the site: it cannot make sense of this page. %1</translation>
    </message>
    <message>
        <source>找不到 yt-dlp（%1）：请安装 yt-dlp，或在“设置”中指定它的路径。</source>
        <translation>yt-dlp not found (%1): install yt-dlp, or set its path in &quot;Settings&quot;.</translation>
    </message>
    <message>
        <source>yt-dlp 无法运行（%1）：它不是可执行文件或没有执行权限。请检查它，或在“设置”中指定另一个路径。</source>
        <translation>yt-dlp cannot run (%1): it is not an executable, or has no execute permission. Check it, or set another path in &quot;Settings&quot;.</translation>
    </message>
    <message>
        <source>无法通过代理连接：“下载选项”中设置了代理 %1。请确认代理正在运行、地址和端口正确，或清除代理后重试。</source>
        <translation>Cannot connect through the proxy: &quot;Download options&quot; sets the proxy %1. Make sure the proxy is running and its address and port are correct, or clear the proxy and try again.</translation>
    </message>
    <message>
        <source>下载进程被外部结束（可能是系统内存不足，或被其他程序终止）：可以重新开始下载。</source>
        <translation>The download process was ended from outside (perhaps the system ran out of memory, or another program stopped it): you can start the download again.</translation>
    </message>
    <message>
        <source>无法启动命令解释器 %1（%2）：下载没有开始。请检查 QUILLBOX_SHELL 环境变量，或确认系统的 shell 可用。</source>
        <translation>Cannot start the shell %1 (%2): the download did not start. Check the QUILLBOX_SHELL environment variable, or make sure the system shell is available.</translation>
    </message>
    <message>
        <source>无法创建输出目录 %1：没有写入权限，或路径中有同名的文件。请换一个输出目录。</source>
        <translation>Cannot create the output folder %1: there is no write permission, or a file of the same name is in the way. Choose another output folder.</translation>
    </message>
    <message>
        <source>%1（%2）</source>
        <extracomment>A format&apos;s id, then what it is: &quot;22（mp4 · 1280x720 · avc1.64001F+mp4a.40.2）&quot;.</extracomment>
        <translation>%1 (%2)</translation>
    </message>
    <message numerus="yes">
        <source>，共 %n 种</source>
        <translation>
            <numerusform>; %n format in all</numerusform>
            <numerusform>; %n formats in all</numerusform>
        </translation>
    </message>
    <message>
        <source>、</source>
        <extracomment>Between two formats in the list a link offers.</extracomment>
        <translation>, </translation>
    </message>
    <message>
        <source>这个链接提供的格式有：%1%2。</source>
        <translation>Formats this link offers include %1%2.</translation>
    </message>
</context>
<context>
    <name>ExecutableDialog</name>
    <message>
        <source>选择 yt-dlp 可执行文件</source>
        <translation>Choose the yt-dlp executable</translation>
    </message>
    <message>
        <source>所有文件 (*)</source>
        <translation>All files (*)</translation>
    </message>
</context>
<context>
    <name>FilePickerView</name>
    <message>
        <source>选择 yt-dlp 可执行文件</source>
        <translation>Choose the yt-dlp executable</translation>
    </message>
    <message>
        <source>📁 手动选择...</source>
        <translation>📁 Choose manually...</translation>
    </message>
    <message>
        <source>取消</source>
        <translation>Cancel</translation>
    </message>
</context>
<context>
    <name>FolderPicker</name>
    <message>
        <source>选择输出目录</source>
        <translation>Choose output folder</translation>
    </message>
    <message>
        <source>选择</source>
        <translation>Choose</translation>
    </message>
</context>
<context>
    <name>FormatPicker</name>
    <message>
        <source>✓ 标出的格式符合“%1”（%2）</source>
        <translation>✓ The marked formats fit &quot;%1&quot; (%2)</translation>
    </message>
    <message>
        <source>✓ 标出的是“%1”会选的格式</source>
        <translation>✓ Marked: the formats &quot;%1&quot; would choose</translation>
    </message>
    <message>
        <source>没有可以选择的格式</source>
        <translation>No formats to choose from</translation>
    </message>
    <message>
        <source>用所选格式「%1」替换现有的自定义参数「%2」？</source>
        <translation>Replace the current custom arguments &quot;%2&quot; with the selected formats &quot;%1&quot;?</translation>
    </message>
</context>
<context>
    <name>FormatPickerPane</name>
    <message>
        <source>格式</source>
        <translation>Format</translation>
    </message>
    <message>
        <source>分辨率</source>
        <translation>Resolution</translation>
    </message>
    <message>
        <source>帧率</source>
        <translation>FPS</translation>
    </message>
    <message>
        <source>编码</source>
        <translation>Codecs</translation>
    </message>
    <message>
        <source>大小</source>
        <translation>Size</translation>
    </message>
    <message>
        <source>说明</source>
        <translation>Note</translation>
    </message>
    <message>
        <source>选择格式</source>
        <translation>Choose formats</translation>
    </message>
    <message>
        <source>选择一个视频格式和一个音频格式，或一个音视频合一的格式</source>
        <translation>Choose one video format and one audio format, or one format with both video and audio</translation>
    </message>
    <message>
        <source>正在读取格式...</source>
        <translation>Reading formats...</translation>
    </message>
    <message>
        <source>使用所选格式</source>
        <translation>Use selected formats</translation>
    </message>
    <message>
        <source>替换</source>
        <translation>Replace</translation>
    </message>
</context>
<context>
    <name>FormatsListSheet</name>
    <message>
        <source>可用格式列表</source>
        <translation>Available formats</translation>
    </message>
    <message>
        <source>已复制</source>
        <translation>Copied</translation>
    </message>
    <message>
        <source>复制</source>
        <translation>Copy</translation>
    </message>
</context>
<context>
    <name>Handover</name>
    <message>
        <source>链接</source>
        <translation>a quillbox:// link</translation>
    </message>
    <message>
        <source>命令行</source>
        <translation>the command line</translation>
    </message>
</context>
<context>
    <name>InputPresenter</name>
    <message>
        <source>请先输入视频链接</source>
        <translation>Enter video links first</translation>
    </message>
    <message>
        <source>下载选项：%1</source>
        <translation>Download options: %1</translation>
    </message>
    <message numerus="yes">
        <source>%n 行超过 %1 个字符，已跳过</source>
        <translation>
            <numerusform>%n line skipped: longer than %1 characters</numerusform>
            <numerusform>%n lines skipped: longer than %1 characters</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%n 个链接超过一次 %1 个的上限，已跳过</source>
        <translation>
            <numerusform>%n link skipped: over the limit of %1 at a time</numerusform>
            <numerusform>%n links skipped: over the limit of %1 at a time</numerusform>
        </translation>
    </message>
    <message>
        <source>没有可以下载的链接</source>
        <translation>No links to download</translation>
    </message>
    <message>
        <source>；</source>
        <extracomment>Between the notices of a list, as &quot;；&quot; is in Chinese</extracomment>
        <translation>; </translation>
    </message>
    <message>
        <source>拖放</source>
        <extracomment>Where links came from, in &quot;从%1收到 %n 个链接&quot;</extracomment>
        <translation>drag and drop</translation>
    </message>
    <message>
        <source>拖放的内容中没有链接</source>
        <translation>No links in what was dropped</translation>
    </message>
    <message>
        <source>无法读取文件：%1</source>
        <translation>Cannot read the file: %1</translation>
    </message>
    <message>
        <source>文件 %1 </source>
        <extracomment>Where links came from, in &quot;从%1收到 %n 个链接&quot;: a file and its name</extracomment>
        <translation>the file %1</translation>
    </message>
    <message>
        <source>文件中没有链接：%1</source>
        <translation>No links in the file: %1</translation>
    </message>
    <message>
        <source>不是有效的链接：%1</source>
        <translation>Invalid links: %1</translation>
    </message>
</context>
<context>
    <name>InstallationAlert</name>
    <message>
        <source>未安装 yt-dlp</source>
        <translation>yt-dlp is not installed</translation>
    </message>
    <message>
        <source>yt-dlp 是一个开源视频下载工具。请通过以下方式安装：

• Homebrew: brew install yt-dlp
• pip: pip install yt-dlp</source>
        <translation>yt-dlp is an open-source video download tool. Install it in one of these ways:

• Homebrew: brew install yt-dlp
• pip: pip install yt-dlp</translation>
    </message>
    <message>
        <source>稍后</source>
        <translation>Later</translation>
    </message>
    <message>
        <source>安装最新 yt-dlp</source>
        <translation>Install latest yt-dlp</translation>
    </message>
    <message>
        <source>打开安装说明</source>
        <translation>Open install instructions</translation>
    </message>
</context>
<context>
    <name>InstanceServer</name>
    <message>
        <source>已拒绝一个交给 Quillbox 链接的连接：%1</source>
        <translation>Refused a connection handing links to Quillbox: %1</translation>
    </message>
    <message>
        <source>另一个用户（%1）</source>
        <translation>another user (%1)</translation>
    </message>
    <message>
        <source>消息不完整</source>
        <translation>incomplete message</translation>
    </message>
    <message>
        <source>无法读取的消息</source>
        <translation>unreadable message</translation>
    </message>
</context>
<context>
    <name>LineSplitter</name>
    <message numerus="yes">
        <source>…（此行过长，已省略 %1 字节）</source>
        <translation>
            <numerusform>… (line too long, %1 byte left out)</numerusform>
            <numerusform>… (line too long, %1 bytes left out)</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>LinksEditor</name>
    <message>
        <source>视频链接</source>
        <translation>Video links</translation>
    </message>
    <message>
        <source>粘贴</source>
        <translation>Paste</translation>
    </message>
    <message>
        <source>清空</source>
        <translation>Clear</translation>
    </message>
    <message>
        <source>请输入视频链接，每行一个...</source>
        <translation>Enter video links, one per line...</translation>
    </message>
    <message>
        <source>支持多个链接，每行一个</source>
        <translation>Several links can be entered, one per line</translation>
    </message>
</context>
<context>
    <name>LinksFileDialog</name>
    <message>
        <source>从文件导入链接</source>
        <translation>Import links from file</translation>
    </message>
    <message>
        <source>文本文件 (*.txt *.list *.csv *.md)</source>
        <translation>Text files (*.txt *.list *.csv *.md)</translation>
    </message>
    <message>
        <source>所有文件 (*)</source>
        <translation>All files (*)</translation>
    </message>
</context>
<context>
    <name>LogPanelView</name>
    <message>
        <source>下载日志</source>
        <translation>Download log</translation>
    </message>
    <message numerus="yes">
        <source>%n 条</source>
        <translation>
            <numerusform>%n entry</numerusform>
            <numerusform>%n entries</numerusform>
        </translation>
    </message>
    <message>
        <source>自动滚动</source>
        <translation>Auto-scroll</translation>
    </message>
    <message>
        <source>最新</source>
        <translation>Latest</translation>
    </message>
</context>
<context>
    <name>Main</name>
    <message>
        <source>Quillbox - 视频下载管理器</source>
        <translation>Quillbox - Video download manager</translation>
    </message>
</context>
<context>
    <name>MainView</name>
    <message>
        <source>错误</source>
        <translation>Error</translation>
    </message>
</context>
<context>
    <name>Maintenance</name>
    <message>
        <source>正在更新 yt-dlp...</source>
        <translation>Updating yt-dlp...</translation>
    </message>
    <message>
        <source>❌ 更新失败: %1</source>
        <translation>❌ Update failed: %1</translation>
    </message>
    <message>
        <source>✅ 命令执行成功，但版本检测失败</source>
        <translation>✅ The command succeeded, but the version check failed</translation>
    </message>
    <message>
        <source>✅ 更新成功，当前版本: %1</source>
        <translation>✅ Update succeeded, current version: %1</translation>
    </message>
    <message>
        <source>正在获取可用格式...</source>
        <translation>Getting available formats...</translation>
    </message>
    <message>
        <source>执行命令: %1</source>
        <translation>Running command: %1</translation>
    </message>
    <message>
        <source>获取格式列表失败: %1</source>
        <translation>Could not get the format list: %1</translation>
    </message>
    <message>
        <source>格式列表获取成功</source>
        <translation>Got the format list</translation>
    </message>
</context>
<context>
    <name>MenuActions</name>
    <message>
        <source>文件</source>
        <translation>File</translation>
    </message>
    <message>
        <source>编辑</source>
        <translation>Edit</translation>
    </message>
    <message>
        <source>窗口</source>
        <translation>Window</translation>
    </message>
    <message>
        <source>关于 Quillbox</source>
        <translation>About Quillbox</translation>
    </message>
    <message>
        <source>偏好设置...</source>
        <translation>Preferences...</translation>
    </message>
    <message>
        <source>隐藏 Quillbox</source>
        <translation>Hide Quillbox</translation>
    </message>
    <message>
        <source>隐藏其他</source>
        <translation>Hide others</translation>
    </message>
    <message>
        <source>显示全部</source>
        <translation>Show all</translation>
    </message>
    <message>
        <source>退出 Quillbox</source>
        <translation>Quit Quillbox</translation>
    </message>
    <message>
        <source>新建下载任务</source>
        <translation>New download</translation>
    </message>
    <message>
        <source>从文件导入链接…</source>
        <translation>Import links from file…</translation>
    </message>
    <message>
        <source>关闭窗口</source>
        <translation>Close window</translation>
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
        <source>剪切</source>
        <translation>Cut</translation>
    </message>
    <message>
        <source>复制</source>
        <translation>Copy</translation>
    </message>
    <message>
        <source>粘贴</source>
        <translation>Paste</translation>
    </message>
    <message>
        <source>全选</source>
        <translation>Select all</translation>
    </message>
    <message>
        <source>最小化</source>
        <translation>Minimize</translation>
    </message>
    <message>
        <source>缩放</source>
        <translation>Zoom</translation>
    </message>
    <message>
        <source>全部置于顶层</source>
        <translation>Bring all to front</translation>
    </message>
</context>
<context>
    <name>MessageAlert</name>
    <message>
        <source>好</source>
        <translation>OK</translation>
    </message>
</context>
<context>
    <name>Notifier</name>
    <message>
        <source>下载完成</source>
        <translation>Download complete</translation>
    </message>
    <message>
        <source>下载失败</source>
        <translation>Download failed</translation>
    </message>
    <message>
        <source>osascript 无法启动</source>
        <translation>osascript could not be started</translation>
    </message>
</context>
<context>
    <name>OutputFolderField</name>
    <message>
        <source>输出目录</source>
        <translation>Output folder</translation>
    </message>
    <message>
        <source>选择输出目录...</source>
        <translation>Choose output folder...</translation>
    </message>
    <message>
        <source>选择输出目录</source>
        <translation>Choose output folder</translation>
    </message>
</context>
<context>
    <name>Playlist</name>
    <message>
        <source>看不懂“%1”，请写成 1-20, 25 这样</source>
        <translation>Cannot understand &quot;%1&quot;; write it like 1-20, 25</translation>
    </message>
    <message>
        <source>“%1”不在 1-%2 之内</source>
        <translation>&quot;%1&quot; is not within 1-%2</translation>
    </message>
    <message>
        <source>请写出要下载的序号，例如 1-20, 25</source>
        <translation>Enter the numbers to download, e.g. 1-20, 25</translation>
    </message>
</context>
<context>
    <name>PlaylistGroupHeader</name>
    <message>
        <source>展开</source>
        <translation>Expand</translation>
    </message>
    <message>
        <source>折叠</source>
        <translation>Collapse</translation>
    </message>
    <message numerus="yes">
        <source>%n 项</source>
        <translation>
            <numerusform>%n item</numerusform>
            <numerusform>%n items</numerusform>
        </translation>
    </message>
    <message>
        <source>%1 已完成</source>
        <translation>%1 completed</translation>
    </message>
    <message>
        <source>%1 未完成</source>
        <translation>%1 unfinished</translation>
    </message>
    <message>
        <source>全部停止</source>
        <translation>Stop all</translation>
    </message>
    <message>
        <source>全部重试</source>
        <translation>Retry all</translation>
    </message>
</context>
<context>
    <name>PlaylistListing</name>
    <message>
        <source>正在读取播放列表: %1</source>
        <translation>Reading playlist: %1</translation>
    </message>
    <message>
        <source>已取消读取播放列表: %1</source>
        <translation>Stopped reading playlist: %1</translation>
    </message>
    <message numerus="yes">
        <source>播放列表「%1」: 读到第 %n 项时停止，只用已读到的项</source>
        <translation>
            <numerusform>Playlist &quot;%1&quot;: stopped after %n item; only the items read so far are used</numerusform>
            <numerusform>Playlist &quot;%1&quot;: stopped after %n items; only the items read so far are used</numerusform>
        </translation>
    </message>
    <message>
        <source>yt-dlp 以状态 %1 退出</source>
        <translation>yt-dlp exited with status %1</translation>
    </message>
    <message numerus="yes">
        <source>播放列表「%1」: 读取到 %n 项</source>
        <translation>
            <numerusform>Playlist &quot;%1&quot;: read %n item</numerusform>
            <numerusform>Playlist &quot;%1&quot;: read %n items</numerusform>
        </translation>
    </message>
    <message>
        <source>播放列表未读完: %1</source>
        <translation>Playlist not read to the end: %1</translation>
    </message>
    <message>
        <source>yt-dlp 没有列出任何视频</source>
        <translation>yt-dlp listed no videos</translation>
    </message>
</context>
<context>
    <name>PlaylistPicker</name>
    <message>
        <source>播放列表</source>
        <translation>Playlist</translation>
    </message>
    <message>
        <source>正在检查链接：%1</source>
        <translation>Checking link: %1</translation>
    </message>
    <message numerus="yes">
        <source>已读取 %1 / %n 项</source>
        <translation>
            <numerusform>Read %1 / %n item</numerusform>
            <numerusform>Read %1 / %n items</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>已读取 %n 项</source>
        <translation>
            <numerusform>Read %n item</numerusform>
            <numerusform>Read %n items</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>共 %n 项，列表未读完：%1</source>
        <translation>
            <numerusform>%n item; the list was not read to the end: %1</numerusform>
            <numerusform>%n items; the list was not read to the end: %1</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>共 %n 项</source>
        <translation>
            <numerusform>%n item</numerusform>
            <numerusform>%n items</numerusform>
        </translation>
    </message>
    <message>
        <source>已在队列中</source>
        <translation>Already in queue</translation>
    </message>
    <message>
        <source>已下载过</source>
        <translation>Already downloaded</translation>
    </message>
</context>
<context>
    <name>PlaylistSheet</name>
    <message>
        <source>筛选标题</source>
        <translation>Filter titles</translation>
    </message>
    <message>
        <source>序号，如 1-20, 25</source>
        <translation>Numbers, e.g. 1-20, 25</translation>
    </message>
    <message>
        <source>按序号选择</source>
        <translation>Select by number</translation>
    </message>
    <message>
        <source>全选</source>
        <translation>Select all</translation>
    </message>
    <message>
        <source>全不选</source>
        <translation>Select none</translation>
    </message>
    <message>
        <source>反选</source>
        <translation>Invert selection</translation>
    </message>
    <message>
        <source>已选 %1 / %2 项</source>
        <translation>%1 / %2 selected</translation>
    </message>
    <message numerus="yes">
        <source>之后还有 %n 个链接待检查</source>
        <translation>
            <numerusform>%n more link to check after this</numerusform>
            <numerusform>%n more links to check after this</numerusform>
        </translation>
    </message>
    <message>
        <source>取消</source>
        <translation>Cancel</translation>
    </message>
    <message>
        <source>下载所选 (%1)</source>
        <translation>Download selected (%1)</translation>
    </message>
    <message>
        <source>下载所选</source>
        <translation>Download selected</translation>
    </message>
</context>
<context>
    <name>PresetGrid</name>
    <message>
        <source>下载预设</source>
        <translation>Preset</translation>
    </message>
</context>
<context>
    <name>PresetListModel</name>
    <message>
        <source>使用 yt-dlp 默认参数，自动选择最佳格式</source>
        <translation>Uses yt-dlp&apos;s default arguments and picks the best format automatically</translation>
    </message>
    <message>
        <source>下载最高画质和音质的视频</source>
        <translation>Downloads video in the highest picture and sound quality</translation>
    </message>
    <message>
        <source>下载最佳音质的音频</source>
        <translation>Downloads audio in the best quality</translation>
    </message>
    <message>
        <source>分别下载最佳视频和音频并合并</source>
        <translation>Downloads the best video and audio separately and merges them</translation>
    </message>
    <message>
        <source>仅下载音频（MP3格式）</source>
        <translation>Downloads audio only (MP3 format)</translation>
    </message>
    <message>
        <source>使用自定义参数</source>
        <translation>Uses custom arguments</translation>
    </message>
</context>
<context>
    <name>PresetsView</name>
    <message>
        <source>删除预设“%1”？删除后无法恢复。</source>
        <translation>Delete the preset &quot;%1&quot;? This cannot be undone.</translation>
    </message>
    <message>
        <source>参数预设</source>
        <translation>Presets</translation>
    </message>
    <message>
        <source>把常用的 yt-dlp 参数存为自己的预设。选用后，下载页切换到“自定义”并填入这些参数。</source>
        <translation>Save the yt-dlp arguments you use often as presets of your own. When you use one, the download page switches to &quot;Custom&quot; and fills in its arguments.</translation>
    </message>
    <message>
        <source>我的预设</source>
        <translation>My presets</translation>
    </message>
    <message>
        <source>还没有自己的预设，在下面新建一个。</source>
        <translation>No presets of your own yet. Create one below.</translation>
    </message>
    <message>
        <source>正在读取...</source>
        <translation>Loading...</translation>
    </message>
    <message>
        <source>下载选项：%1</source>
        <translation>Download options: %1</translation>
    </message>
    <message>
        <source>选用</source>
        <translation>Use</translation>
    </message>
    <message>
        <source>编辑</source>
        <translation>Edit</translation>
    </message>
    <message>
        <source>删除</source>
        <translation>Delete</translation>
    </message>
    <message>
        <source>名称</source>
        <translation>Name</translation>
    </message>
    <message>
        <source>参数</source>
        <translation>Arguments</translation>
    </message>
    <message>
        <source>保存</source>
        <translation>Save</translation>
    </message>
    <message>
        <source>取消</source>
        <translation>Cancel</translation>
    </message>
    <message>
        <source>新建预设</source>
        <translation>New preset</translation>
    </message>
    <message>
        <source>例如：1080p 带字幕</source>
        <translation>e.g. 1080p with subtitles</translation>
    </message>
    <message>
        <source>同时保存当前的下载选项：%1</source>
        <translation>Also saves the current download options: %1</translation>
    </message>
    <message>
        <source>添加预设</source>
        <translation>Add preset</translation>
    </message>
    <message>
        <source>内置预设</source>
        <translation>Built-in presets</translation>
    </message>
    <message>
        <source>内置预设不能修改，在下载页直接选用。</source>
        <translation>Built-in presets cannot be changed; choose them directly on the download page.</translation>
    </message>
    <message>
        <source>参数：下载页“自定义参数”中填写的内容</source>
        <translation>Arguments: whatever is entered in &quot;Custom arguments&quot; on the download page</translation>
    </message>
    <message>
        <source>参数：无，由 yt-dlp 自行选择</source>
        <translation>Arguments: none, yt-dlp chooses for itself</translation>
    </message>
</context>
<context>
    <name>ProgressParser</name>
    <message>
        <source>需要登录或 Cookie 已过期</source>
        <translation>Sign-in required, or the cookies have expired</translation>
    </message>
    <message>
        <source>无效的 URL</source>
        <translation>Invalid URL</translation>
    </message>
</context>
<context>
    <name>QueueMemory</name>
    <message>
        <source>另一个 Quillbox 正在使用它</source>
        <translation>another Quillbox is using it</translation>
    </message>
    <message>
        <source>无法创建锁文件 %1.lock</source>
        <translation>cannot create the lock file %1.lock</translation>
    </message>
    <message>
        <source>⚠️ 队列数据库已损坏，已移到 %1，并新建了一个</source>
        <translation>⚠️ The queue database was damaged: it was moved to %1 and a new one was created</translation>
    </message>
    <message>
        <source>⚠️ 队列数据库来自更新版本的 Quillbox，本次不会保存队列: %1</source>
        <translation>⚠️ The queue database is from a newer Quillbox, so the queue is not saved this time: %1</translation>
    </message>
    <message>
        <source>队列数据库来自更新版本的 Quillbox，只读取、不改动：本次的队列只在内存中，退出后不会保留。</source>
        <translation>The queue database is from a newer Quillbox, so it is only read, never changed: this session&apos;s queue lives in memory and is not kept after quitting.</translation>
    </message>
    <message>
        <source>⚠️ 无法打开队列数据库 %1，本次不会保存队列: %2</source>
        <translation>⚠️ Cannot open the queue database %1, so the queue is not saved this time: %2</translation>
    </message>
    <message>
        <source>无法打开队列数据库（%1）：本次的队列只在内存中，退出后不会保留。</source>
        <translation>Cannot open the queue database (%1): this session&apos;s queue lives in memory and is not kept after quitting.</translation>
    </message>
    <message>
        <source>⚠️ 无法保存队列: %1</source>
        <translation>⚠️ Cannot save the queue: %1</translation>
    </message>
    <message numerus="yes">
        <source>⏹ 已结束上次运行遗留的 %n 个下载进程</source>
        <translation>
            <numerusform>⏹ Ended %n download process left over from the last run</numerusform>
            <numerusform>⏹ Ended %n download processes left over from the last run</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>QuitDialog</name>
    <message numerus="yes">
        <source>有 %n 个下载正在进行，退出将停止它们。</source>
        <translation>
            <numerusform>%n download is in progress. Quitting will stop it.</numerusform>
            <numerusform>%n downloads are in progress. Quitting will stop them.</numerusform>
        </translation>
    </message>
    <message>
        <source>取消</source>
        <translation>Cancel</translation>
    </message>
    <message>
        <source>退出</source>
        <translation>Quit</translation>
    </message>
</context>
<context>
    <name>RendererChoice</name>
    <message>
        <source>环境变量 QT_QUICK_BACKEND=%1</source>
        <translation>environment variable QT_QUICK_BACKEND=%1</translation>
    </message>
    <message>
        <source>环境变量 QSG_RHI_BACKEND=%1</source>
        <translation>environment variable QSG_RHI_BACKEND=%1</translation>
    </message>
    <message>
        <source>设置为硬件加速</source>
        <translation>set to Hardware</translation>
    </message>
    <message>
        <source>设置为软件</source>
        <translation>set to Software</translation>
    </message>
    <message>
        <source>自动：macOS 用 Metal 绘制</source>
        <translation>automatic: macOS draws with Metal</translation>
    </message>
    <message>
        <source>自动：LIBGL_ALWAYS_SOFTWARE 让 OpenGL 在软件中运行</source>
        <translation>automatic: LIBGL_ALWAYS_SOFTWARE makes OpenGL run in software</translation>
    </message>
    <message>
        <source>自动：GALLIUM_DRIVER=%1 是软件 OpenGL</source>
        <translation>automatic: GALLIUM_DRIVER=%1 is software OpenGL</translation>
    </message>
    <message>
        <source>自动：窗口显示在另一台机器上（DISPLAY=%1）</source>
        <translation>automatic: the window is shown on another machine (DISPLAY=%1)</translation>
    </message>
    <message>
        <source>自动：没有可用的 GPU 渲染设备（/dev/dri/renderD*）</source>
        <translation>automatic: no GPU render device available (/dev/dri/renderD*)</translation>
    </message>
    <message>
        <source>自动：找到 GPU 渲染设备 %1</source>
        <translation>automatic: found GPU render device %1</translation>
    </message>
</context>
<context>
    <name>SavedPresetModel</name>
    <message>
        <source>请填写预设名称</source>
        <translation>Enter a preset name</translation>
    </message>
    <message numerus="yes">
        <source>预设名称最多 %n 个字</source>
        <translation>
            <numerusform>A preset name can be at most %n character long</numerusform>
            <numerusform>A preset name can be at most %n characters long</numerusform>
        </translation>
    </message>
    <message>
        <source>已有名为“%1”的预设，请换一个名称</source>
        <translation>There is already a preset named &quot;%1&quot;; choose another name</translation>
    </message>
    <message>
        <source>请填写 yt-dlp 参数</source>
        <translation>Enter yt-dlp arguments</translation>
    </message>
    <message>
        <source>找不到这个预设</source>
        <translation>This preset cannot be found</translation>
    </message>
    <message>
        <source>“%1”正在保存，请稍后再改</source>
        <translation>&quot;%1&quot; is being saved; try changing it again shortly</translation>
    </message>
    <message>
        <source>还在读取已保存的预设，请稍后再试</source>
        <translation>Still loading the saved presets; try again shortly</translation>
    </message>
    <message>
        <source>已选用预设: %1</source>
        <translation>Using preset: %1</translation>
    </message>
    <message>
        <source>“%1”</source>
        <translation>&quot;%1&quot;</translation>
    </message>
    <message>
        <source>、</source>
        <extracomment>Between the items of a list, as &quot;、&quot; is in Chinese: &quot;“a”、“b”&quot;</extracomment>
        <translation>, </translation>
    </message>
    <message>
        <source>未能保存到磁盘：%1。本次运行中仍可使用，退出后不会保留。</source>
        <translation>Could not save to disk: %1. Still usable in this session, but lost when you quit.</translation>
    </message>
</context>
<context>
    <name>SettingsPresenter</name>
    <message>
        <source>正在更新...</source>
        <translation>Updating...</translation>
    </message>
</context>
<context>
    <name>SettingsView</name>
    <message>
        <source>重新检测</source>
        <translation>Detect again</translation>
    </message>
    <message>
        <source>设置</source>
        <translation>Settings</translation>
    </message>
    <message>
        <source>yt-dlp 配置</source>
        <translation>yt-dlp setup</translation>
    </message>
    <message>
        <source>yt-dlp 状态</source>
        <translation>yt-dlp status</translation>
    </message>
    <message>
        <source>已安装 (v%1)</source>
        <translation>Installed (v%1)</translation>
    </message>
    <message>
        <source>未找到</source>
        <translation>Not found</translation>
    </message>
    <message>
        <source>取消</source>
        <translation>Cancel</translation>
    </message>
    <message>
        <source>可执行文件路径</source>
        <translation>Executable path</translation>
    </message>
    <message>
        <source>输入 yt-dlp 路径</source>
        <translation>Enter the yt-dlp path</translation>
    </message>
    <message>
        <source>浏览...</source>
        <translation>Browse...</translation>
    </message>
    <message>
        <source>自动检测路径: %1（使用中，自选路径）</source>
        <translation>Auto-detected path: %1 (in use, chosen by you)</translation>
    </message>
    <message>
        <source>自动检测路径: %1（使用中，自动找到）</source>
        <translation>Auto-detected path: %1 (in use, found automatically)</translation>
    </message>
    <message>
        <source>使用此路径</source>
        <translation>Use this path</translation>
    </message>
    <message>
        <source>重置为自动检测</source>
        <translation>Reset to auto-detect</translation>
    </message>
    <message>
        <source>⚠️ 如果下载 YouTube 时只看到图片格式（storyboard），通常是 yt-dlp 版本过旧，需要更新。</source>
        <translation>⚠️ If YouTube downloads show only image formats (storyboard), yt-dlp is usually too old and needs updating.</translation>
    </message>
    <message>
        <source>更新中...</source>
        <translation>Updating...</translation>
    </message>
    <message>
        <source>更新 yt-dlp 到最新版</source>
        <translation>Update yt-dlp to latest</translation>
    </message>
    <message>
        <source>安装最新 yt-dlp</source>
        <translation>Install latest yt-dlp</translation>
    </message>
    <message>
        <source>自动更新 yt-dlp</source>
        <translation>Update yt-dlp automatically</translation>
    </message>
    <message>
        <source>每天检查一次新版本；由 Quillbox 安装的 yt-dlp 会在没有下载进行时自动更新。</source>
        <translation>Checks for a new version once a day; a yt-dlp installed by Quillbox updates itself while no download is running.</translation>
    </message>
    <message>
        <source>JS 运行时（YouTube EJS）</source>
        <translation>JavaScript runtime (YouTube EJS)</translation>
    </message>
    <message>
        <source>%1 已就绪</source>
        <translation>%1 is ready</translation>
    </message>
    <message>
        <source>未检测到 JS 运行时</source>
        <translation>No JavaScript runtime found</translation>
    </message>
    <message>
        <source>YouTube 下载需要 JS 运行时来解决 n-challenge（EJS）。支持 Deno（推荐）、Node.js（≥20）、Bun。</source>
        <translation>YouTube downloads need a JavaScript runtime to solve the n-challenge (EJS). Supported: Deno (recommended), Node.js (≥20), Bun.</translation>
    </message>
    <message>
        <source>安装 Deno（推荐）</source>
        <translation>Install Deno (recommended)</translation>
    </message>
    <message>
        <source>安装 Node.js</source>
        <translation>Install Node.js</translation>
    </message>
    <message>
        <source>通过 Homebrew 安装：brew install deno  或  brew install node</source>
        <translation>Install with Homebrew: brew install deno  or  brew install node</translation>
    </message>
    <message>
        <source>FFmpeg（音频转码）</source>
        <translation>FFmpeg (audio conversion)</translation>
    </message>
    <message>
        <source>FFmpeg 已就绪</source>
        <translation>FFmpeg is ready</translation>
    </message>
    <message>
        <source>未检测到 FFmpeg</source>
        <translation>FFmpeg not found</translation>
    </message>
    <message>
        <source>下载音频（最佳音质、仅音频）时，yt-dlp 需要 FFmpeg 进行音频提取和转码。</source>
        <translation>To download audio (Best audio, Audio only), yt-dlp needs FFmpeg to extract and convert the audio.</translation>
    </message>
    <message>
        <source>下载 FFmpeg</source>
        <translation>Download FFmpeg</translation>
    </message>
    <message>
        <source>推荐通过 Homebrew 安装：</source>
        <translation>Installing with Homebrew is recommended:</translation>
    </message>
    <message>
        <source>下载设置</source>
        <translation>Download settings</translation>
    </message>
    <message>
        <source>默认输出目录</source>
        <translation>Default output folder</translation>
    </message>
    <message>
        <source>选择下载目录</source>
        <translation>Choose a download folder</translation>
    </message>
    <message>
        <source>同时下载数</source>
        <translation>Simultaneous downloads</translation>
    </message>
    <message>
        <source>完成时通知</source>
        <translation>Notify when finished</translation>
    </message>
    <message>
        <source>启动时继续未完成的下载</source>
        <translation>Resume unfinished downloads at startup</translation>
    </message>
    <message>
        <source>界面</source>
        <translation>Interface</translation>
    </message>
    <message>
        <source>界面渲染</source>
        <translation>Interface rendering</translation>
    </message>
    <message>
        <source>自动</source>
        <translation>Automatic</translation>
    </message>
    <message>
        <source>硬件加速</source>
        <translation>Hardware</translation>
    </message>
    <message>
        <source>软件</source>
        <translation>Software</translation>
    </message>
    <message>
        <source>正在使用：%1（%2）</source>
        <translation>In use: %1 (%2)</translation>
    </message>
    <message>
        <source>未知</source>
        <translation>Unknown</translation>
    </message>
    <message>
        <source>下次启动 Quillbox 时生效</source>
        <translation>Takes effect the next time Quillbox starts</translation>
    </message>
    <message>
        <source>从别处添加链接</source>
        <translation>Add links from elsewhere</translation>
    </message>
    <message>
        <source>监视剪贴板</source>
        <translation>Watch the clipboard</translation>
    </message>
    <message>
        <source>复制的文字里有新链接时，下载页上方会提示添加；不会自动开始下载。</source>
        <translation>When copied text contains new links, the top of the download page offers to add them; no download starts on its own.</translation>
    </message>
    <message>
        <source>复制的文字里有新链接时，下载页上方会提示添加。在 Wayland 下只能看到 Quillbox 在前台时复制的内容。</source>
        <translation>When copied text contains new links, the top of the download page offers to add them. Under Wayland, only what is copied while Quillbox is in front can be seen.</translation>
    </message>
    <message>
        <source>复制下面的书签，在浏览器中新建一个书签并把它粘贴为网址；在视频页面点这个书签，页面链接就会加入 Quillbox 的链接框。</source>
        <translation>Copy the bookmark below, create a new bookmark in your browser and paste it as the address. Click this bookmark on a video page and the page&apos;s link is added to Quillbox&apos;s links box.</translation>
    </message>
    <message>
        <source>已复制</source>
        <translation>Copied</translation>
    </message>
    <message>
        <source>复制书签</source>
        <translation>Copy bookmark</translation>
    </message>
    <message>
        <source>界面语言</source>
        <translation>Language</translation>
    </message>
    <message>
        <source>跟随系统</source>
        <translation>Same as system</translation>
    </message>
</context>
<context>
    <name>ShellRunner</name>
    <message>
        <source>无法启动 %1：%2</source>
        <translation>Cannot start %1: %2</translation>
    </message>
    <message numerus="yes">
        <source>命令在 %n 秒内没有结束，已停止</source>
        <translation>
            <numerusform>The command did not finish within %n second and was stopped</numerusform>
            <numerusform>The command did not finish within %n seconds and was stopped</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>ShellWords</name>
    <message>
        <source>自定义参数中的单引号没有闭合</source>
        <translation>A single quote in the custom arguments is not closed</translation>
    </message>
    <message>
        <source>自定义参数中不能有命令替换（$(…) 或反引号），它不会被执行</source>
        <translation>The custom arguments cannot contain command substitution ($(…) or backquotes); it would not be run</translation>
    </message>
    <message>
        <source>自定义参数中的双引号没有闭合</source>
        <translation>A double quote in the custom arguments is not closed</translation>
    </message>
    <message>
        <source>自定义参数中的 ${…} 只能写变量名</source>
        <translation>${…} in the custom arguments can only hold a variable name</translation>
    </message>
</context>
<context>
    <name>SidebarView</name>
    <message>
        <source>视频下载管理器</source>
        <translation>Video download manager</translation>
    </message>
    <message>
        <source>总任务</source>
        <translation>Total</translation>
    </message>
    <message>
        <source>完成</source>
        <translation>Completed</translation>
    </message>
    <message>
        <source>下载管理</source>
        <translation>Downloads</translation>
    </message>
    <message>
        <source>参数预设</source>
        <translation>Presets</translation>
    </message>
    <message>
        <source>Cookie 管理</source>
        <translation>Cookies</translation>
    </message>
    <message>
        <source>下载日志</source>
        <translation>Download log</translation>
    </message>
    <message>
        <source>设置</source>
        <translation>Settings</translation>
    </message>
</context>
<context>
    <name>TaskModel</name>
    <message>
        <source>已下载 %1</source>
        <translation>%1 downloaded</translation>
    </message>
    <message>
        <source>已下载 %1 / %2</source>
        <translation>%1 of %2 downloaded</translation>
    </message>
    <message>
        <source>剩余 %1</source>
        <translation>%1 left</translation>
    </message>
</context>
<context>
    <name>TaskStore</name>
    <message>
        <source>无法创建文件夹 %1</source>
        <translation>Cannot create the folder %1</translation>
    </message>
</context>
<context>
    <name>ToolDiscovery</name>
    <message>
        <source>⚠️ %1 %2（%3）版本过旧，yt-dlp 需要 ≥ %4，不会使用它</source>
        <translation>⚠️ %1 %2 (%3) is too old: yt-dlp needs ≥ %4, so it will not be used</translation>
    </message>
    <message>
        <source>未知版本</source>
        <translation>unknown version</translation>
    </message>
    <message>
        <source>⚠️ 未检测到 JS 运行时（Deno/Node/Bun），YouTube 下载可能失败</source>
        <translation>⚠️ No JavaScript runtime found (Deno/Node/Bun); YouTube downloads may fail</translation>
    </message>
    <message>
        <source>⚠️ yt-dlp %1 版本过旧，不支持 JS 运行时（--js-runtimes），下载时不会使用 %2；请在 设置 → 更新 yt-dlp 到最新版</source>
        <translation>⚠️ yt-dlp %1 is too old to support JavaScript runtimes (--js-runtimes), so downloads will not use %2; use Settings → Update yt-dlp to latest</translation>
    </message>
    <message>
        <source>✅ 检测到 JS 运行时: %1 (%2)</source>
        <translation>✅ JavaScript runtime found: %1 (%2)</translation>
    </message>
    <message>
        <source>✅ 检测到 FFmpeg: %1</source>
        <translation>✅ FFmpeg found: %1</translation>
    </message>
</context>
<context>
    <name>ToolInstaller</name>
    <message>
        <source>无法连接到下载服务器，请检查网络后重试。</source>
        <translation>Cannot connect to the download server. Check the network and try again.</translation>
    </message>
    <message>
        <source>GitHub 暂时限制了请求次数，请过一会儿再试。</source>
        <translation>GitHub is limiting requests for now. Try again in a while.</translation>
    </message>
    <message>
        <source>下载中断，文件不完整，已丢弃。</source>
        <translation>The download was cut off; the incomplete file was discarded.</translation>
    </message>
    <message>
        <source>已取消安装，原有文件未改动。</source>
        <translation>Installation cancelled. The existing file is unchanged.</translation>
    </message>
    <message>
        <source>无法写入文件夹 %1，请检查权限，原有文件未改动。</source>
        <translation>Cannot write to the folder %1. Check its permissions. The existing file is unchanged.</translation>
    </message>
    <message>
        <source>磁盘空间不足，无法保存下载的文件，原有文件未改动。</source>
        <translation>Not enough disk space to save the downloaded file. The existing file is unchanged.</translation>
    </message>
    <message>
        <source>已拒绝不安全的下载地址（只允许 HTTPS）：%1</source>
        <translation>Refused an insecure download address (only HTTPS is allowed): %1</translation>
    </message>
    <message>
        <source>下载服务器上找不到这个文件（HTTP 404）。</source>
        <translation>The file was not found on the download server (HTTP 404).</translation>
    </message>
    <message>
        <source>下载服务器返回了错误（HTTP %1）。</source>
        <translation>The download server returned an error (HTTP %1).</translation>
    </message>
    <message>
        <source>下载服务器长时间没有响应，请稍后重试。</source>
        <translation>The download server did not respond for a long time. Try again later.</translation>
    </message>
    <message>
        <source>无法与下载服务器建立安全连接。</source>
        <translation>Cannot establish a secure connection to the download server.</translation>
    </message>
    <message>
        <source>下载服务器的重定向次数过多。</source>
        <translation>The download server redirected too many times.</translation>
    </message>
    <message>
        <source>下载服务器返回的内容异常。</source>
        <translation>The download server returned unexpected content.</translation>
    </message>
    <message>
        <source>无法从发布页读出最新版本号。</source>
        <translation>Cannot read the latest version number from the release page.</translation>
    </message>
    <message>
        <source>正在安装 %1，请等它结束后再试。</source>
        <translation>%1 is being installed. Wait for it to finish, then try again.</translation>
    </message>
    <message>
        <source>正在查询 %1 的最新版本…</source>
        <translation>Looking up the latest version of %1…</translation>
    </message>
    <message>
        <source>%1 没有适用于这个系统的版本。</source>
        <translation>%1 has no version for this system.</translation>
    </message>
    <message>
        <source>正在获取 %1 %2 的校验值…</source>
        <translation>Getting the checksum for %1 %2…</translation>
    </message>
    <message>
        <source>校验文件里没有 %1 的 SHA-256，已停止安装，原有文件未改动。</source>
        <translation>The checksum file has no SHA-256 for %1. Installation stopped; the existing file is unchanged.</translation>
    </message>
    <message>
        <source>正在下载 %1 %2…</source>
        <translation>Downloading %1 %2…</translation>
    </message>
    <message>
        <source>正在下载 %1 %2… %3</source>
        <translation>Downloading %1 %2… %3</translation>
    </message>
    <message>
        <source>正在校验…</source>
        <translation>Verifying…</translation>
    </message>
    <message>
        <source>下载的文件校验失败（SHA-256 不符），已丢弃，原有文件未改动。</source>
        <translation>The downloaded file failed verification (SHA-256 mismatch) and was discarded. The existing file is unchanged.</translation>
    </message>
    <message>
        <source>正在解压…</source>
        <translation>Extracting…</translation>
    </message>
    <message>
        <source>下载的压缩包里没有 deno 程序，已丢弃，原有文件未改动。</source>
        <translation>The downloaded archive has no deno program in it and was discarded. The existing file is unchanged.</translation>
    </message>
    <message>
        <source>下载的压缩包已损坏，已丢弃，原有文件未改动。</source>
        <translation>The downloaded archive is damaged and was discarded. The existing file is unchanged.</translation>
    </message>
    <message>
        <source>等待下载结束后替换…</source>
        <translation>Waiting for downloads to finish before replacing…</translation>
    </message>
    <message>
        <source>%1 %2 已安装。</source>
        <translation>%1 %2 is installed.</translation>
    </message>
    <message>
        <source>正在取消…</source>
        <translation>Cancelling…</translation>
    </message>
</context>
<context>
    <name>ToolKeeper</name>
    <message>
        <source>正在安装最新 yt-dlp...</source>
        <translation>Installing the latest yt-dlp...</translation>
    </message>
    <message>
        <source>正在安装 Deno...</source>
        <translation>Installing Deno...</translation>
    </message>
    <message>
        <source>正在通过 Homebrew 安装 %1…</source>
        <translation>Installing %1 with Homebrew…</translation>
    </message>
    <message>
        <source>✅ Homebrew 已安装 %1</source>
        <translation>✅ Homebrew installed %1</translation>
    </message>
    <message>
        <source>❌ Homebrew 没能安装 %1，请在终端运行 brew install %1 查看原因。</source>
        <translation>❌ Homebrew could not install %1. Run brew install %1 in a terminal to see why.</translation>
    </message>
    <message>
        <source>⚠️ 自动更新 yt-dlp 失败，继续使用当前版本: %1</source>
        <translation>⚠️ Automatic yt-dlp update failed; keeping the current version: %1</translation>
    </message>
    <message>
        <source>❌ 安装 %1 失败: %2</source>
        <translation>❌ Installing %1 failed: %2</translation>
    </message>
    <message>
        <source>✅ 已安装 %1 %2: %3</source>
        <translation>✅ Installed %1 %2: %3</translation>
    </message>
    <message>
        <source>正在自动更新 yt-dlp 到 %1...</source>
        <translation>Updating yt-dlp to %1 automatically...</translation>
    </message>
</context>
<context>
    <name>Toolchain</name>
    <message>
        <source>YouTube 等需要 JS 运行时的网站</source>
        <translation>YouTube and other sites that need a JavaScript runtime</translation>
    </message>
    <message>
        <source>今天发布</source>
        <translation>released today</translation>
    </message>
    <message numerus="yes">
        <source>%n 天前发布</source>
        <translation>
            <numerusform>released %n day ago</numerusform>
            <numerusform>released %n days ago</numerusform>
        </translation>
    </message>
    <message>
        <source>可以在“设置”中点“安装最新 yt-dlp”，由 Quillbox 保管一份能自动更新的最新版。</source>
        <translation>In &quot;Settings&quot;, you can click &quot;Install latest yt-dlp&quot; to have Quillbox keep its own copy of the latest version, which updates itself.</translation>
    </message>
    <message>
        <source>这个 yt-dlp 由系统的软件包管理器安装，不能自行更新，而系统软件源里的版本往往过旧。%1</source>
        <translation>This yt-dlp was installed by the system&apos;s package manager and cannot update itself, and the versions in the system&apos;s repositories are often too old. %1</translation>
    </message>
    <message>
        <source>这个 yt-dlp 是从源代码运行的，不能自行更新，请用 git pull 更新它。%1</source>
        <translation>This yt-dlp runs from source code and cannot update itself; update it with git pull. %1</translation>
    </message>
    <message>
        <source>GitHub 暂时限制了请求次数，请过一会儿再试。</source>
        <translation>GitHub is limiting requests for now. Try again in a while.</translation>
    </message>
    <message>
        <source>无法连接到 GitHub 获取新版本：请检查网络连接（或代理）后重试。</source>
        <translation>Cannot connect to GitHub to get the new version: check the network connection (or proxy) and try again.</translation>
    </message>
    <message>
        <source>没有权限替换这个 yt-dlp 文件（它可能属于系统或其他用户）。%1</source>
        <translation>No permission to replace this yt-dlp file (it may belong to the system or another user). %1</translation>
    </message>
    <message>
        <source>Homebrew 没能升级 yt-dlp，请在终端运行 brew upgrade yt-dlp 查看原因。</source>
        <translation>Homebrew could not upgrade yt-dlp. Run brew upgrade yt-dlp in a terminal to see why.</translation>
    </message>
    <message>
        <source>pip 不能在这里更新 yt-dlp。%1</source>
        <translation>pip cannot update yt-dlp here. %1</translation>
    </message>
    <message>
        <source>安装最新 yt-dlp</source>
        <translation>Install latest yt-dlp</translation>
    </message>
    <message>
        <source>更新 yt-dlp</source>
        <translation>Update yt-dlp</translation>
    </message>
    <message>
        <source>安装 Deno</source>
        <translation>Install Deno</translation>
    </message>
    <message>
        <source>复制命令</source>
        <translation>Copy command</translation>
    </message>
    <message>
        <source>修复</source>
        <translation>Fix</translation>
    </message>
    <message>
        <source>正在检查 yt-dlp…</source>
        <translation>Checking yt-dlp…</translation>
    </message>
    <message>
        <source>未找到可用的 yt-dlp，无法下载。点“安装最新 yt-dlp”，由 Quillbox 下载官方版本并校验。</source>
        <translation>No working yt-dlp found, so nothing can be downloaded. Click &quot;Install latest yt-dlp&quot; and Quillbox will download the official build and verify it.</translation>
    </message>
    <message>
        <source>由 Quillbox 保管</source>
        <translation>kept by Quillbox</translation>
    </message>
    <message>
        <source>由 Homebrew 安装</source>
        <translation>installed by Homebrew</translation>
    </message>
    <message>
        <source>由系统软件包安装，不能自行更新</source>
        <translation>installed from a system package, cannot update itself</translation>
    </message>
    <message>
        <source>由 pip 安装（python3 -m pip install -U yt-dlp 可更新）</source>
        <translation>installed by pip (update it with python3 -m pip install -U yt-dlp)</translation>
    </message>
    <message>
        <source>从源代码运行</source>
        <translation>running from source code</translation>
    </message>
    <message>
        <source>官方版本，可以自行更新</source>
        <translation>official build, can update itself</translation>
    </message>
    <message>
        <source>yt-dlp %1（%2，%3）</source>
        <translation>yt-dlp %1 (%2, %3)</translation>
    </message>
    <message>
        <source>yt-dlp %1（%2）</source>
        <translation>yt-dlp %1 (%2)</translation>
    </message>
    <message>
        <source>请更新它。</source>
        <translation>Update it.</translation>
    </message>
    <message>
        <source>点“安装最新 yt-dlp”，改用由 Quillbox 保管、自动更新的最新版。</source>
        <translation>Click &quot;Install latest yt-dlp&quot; to switch to the latest version, kept by Quillbox and updated automatically.</translation>
    </message>
    <message>
        <source>%1 版本过旧，%2会下载失败。%3</source>
        <translation>%1 is too old: downloads from %2 will fail. %3</translation>
    </message>
    <message>
        <source>%1，最新版本是 %2。网站经常变化，%3</source>
        <translation>%1. The latest version is %2, and sites change often. %3</translation>
    </message>
    <message>
        <source>%1，已超过 90 天，网站变化后可能下载失败。%2</source>
        <translation>%1 is more than 90 days old: downloads may fail once sites change. %2</translation>
    </message>
    <message>
        <source>%1，可以正常使用。</source>
        <translation>%1, ready to use.</translation>
    </message>
    <message>
        <source>点“安装 Deno”即可解决。</source>
        <translation>Click &quot;Install Deno&quot; to fix this.</translation>
    </message>
    <message>
        <source>正在检查 JS 运行时…</source>
        <translation>Checking the JavaScript runtime…</translation>
    </message>
    <message>
        <source>未检测到 JS 运行时，%1会下载失败。%2</source>
        <translation>No JavaScript runtime found: downloads from %1 will fail. %2</translation>
    </message>
    <message>
        <source>%1 版本过旧（需要 ≥ %2）</source>
        <translation>%1 is too old (needs ≥ %2)</translation>
    </message>
    <message>
        <source>；</source>
        <extracomment>Between two runtimes in the list of those too old to use.</extracomment>
        <translation>; </translation>
    </message>
    <message>
        <source>%1，不会使用。%2会下载失败。%3</source>
        <translation>%1, so no runtime will be used. Downloads from %2 will fail. %3</translation>
    </message>
    <message>
        <source>检测到 %1，但当前 yt-dlp 太旧，无法使用它。请先更新 yt-dlp。</source>
        <translation>Found %1, but the current yt-dlp is too old to use it. Update yt-dlp first.</translation>
    </message>
    <message>
        <source>使用 %1，可以解析 YouTube 视频。</source>
        <translation>Using %1, so YouTube videos can be resolved.</translation>
    </message>
    <message>
        <source>（%1 版本过旧，不使用）</source>
        <translation> (%1 is too old and is not used)</translation>
    </message>
    <message>
        <source>正在检查 FFmpeg…</source>
        <translation>Checking FFmpeg…</translation>
    </message>
    <message>
        <source>未检测到 FFmpeg：不能合并最佳画质的音视频，也不能转换 MP3。请在终端运行 %1</source>
        <translation>FFmpeg not found: cannot merge best-quality video and audio, or convert to MP3. Run this in a terminal: %1</translation>
    </message>
    <message>
        <source>找到 FFmpeg，但缺少 ffprobe：合并和后期处理可能失败。请在终端运行 %1</source>
        <translation>FFmpeg found, but ffprobe is missing: merging and post-processing may fail. Run this in a terminal: %1</translation>
    </message>
    <message>
        <source>FFmpeg 和 ffprobe 都已就绪，可以合并音视频和转换音频。</source>
        <translation>FFmpeg and ffprobe are both ready: video and audio can be merged and audio converted.</translation>
    </message>
    <message>
        <source>找不到可用的 yt-dlp，无法下载。</source>
        <translation>No working yt-dlp found, so nothing can be downloaded.</translation>
    </message>
    <message>
        <source>yt-dlp 版本过旧</source>
        <translation>yt-dlp is too old</translation>
    </message>
    <message>
        <source>没有可用的 JS 运行时</source>
        <translation>No usable JavaScript runtime</translation>
    </message>
    <message>
        <source>%1，%2会下载失败。</source>
        <translation>%1: downloads from %2 will fail.</translation>
    </message>
</context>
<context>
    <name>VideoInfo</name>
    <message>
        <source>未知</source>
        <translation>Unknown</translation>
    </message>
</context>
<context>
    <name>VideoInfoFetch</name>
    <message>
        <source>正在获取视频信息...</source>
        <translation>Getting video info...</translation>
    </message>
    <message>
        <source>执行命令: %1</source>
        <translation>Running command: %1</translation>
    </message>
    <message>
        <source>已取消获取视频信息</source>
        <translation>Getting video info was cancelled</translation>
    </message>
    <message>
        <source>yt-dlp 以状态 %1 退出，没有给出原因</source>
        <translation>yt-dlp exited with status %1 without giving a reason</translation>
    </message>
    <message>
        <source>这个播放列表中没有视频</source>
        <translation>This playlist has no videos</translation>
    </message>
    <message>
        <source>yt-dlp 的输出不是可以读取的视频信息</source>
        <translation>yt-dlp&apos;s output is not video info that can be read</translation>
    </message>
    <message numerus="yes">
        <source>链接是一个播放列表（%n 个视频），显示第一个视频的信息</source>
        <translation>
            <numerusform>The link is a playlist (%n video); showing the first video&apos;s info</numerusform>
            <numerusform>The link is a playlist (%n videos); showing the first video&apos;s info</numerusform>
        </translation>
    </message>
    <message>
        <source>视频信息获取成功: %1</source>
        <translation>Got video info: %1</translation>
    </message>
    <message>
        <source>获取视频信息失败: %1</source>
        <translation>Could not get video info: %1</translation>
    </message>
</context>
<context>
    <name>VideoInfoView</name>
    <message>
        <source>时长</source>
        <translation>Duration</translation>
    </message>
    <message>
        <source>作者</source>
        <translation>Author</translation>
    </message>
    <message>
        <source>播放量</source>
        <translation>Views</translation>
    </message>
    <message>
        <source>点赞数</source>
        <translation>Likes</translation>
    </message>
    <message>
        <source>关闭</source>
        <translation>Close</translation>
    </message>
</context>
</TS>
