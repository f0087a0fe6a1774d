/* Tree menu of the result pages.

   The run's tree script (R + ".js") sets the switches below and describes the
   menu with four calls:
     foldersTree = gFld(caption, link)             the root folder
     auxN = insFld(parent, gFld(caption, link))    a folder inside a folder
     insDoc(parent, gLnk(target, caption, link))   a leaf inside a folder
   The tree page then calls initializeDocument(), which builds the menu.
   Captions are HTML; a link opens in the frame named by the target: "R" the
   result frame ("basefrm"), "B" a new window, "T" the whole window, "S" this
   frame. An empty link opens nothing; a folder then only opens and closes.
   Opened with "?expand" the page shows every folder open; with "?selftest"
   it also opens and closes each folder once and notes the outcome on its
   root element (data-mrv-selftest). */

var USETEXTLINKS = 0;   // 1: captions are links (else only the icons are)
var STARTALLOPEN = 0;   // 1: every folder starts open
var WRAPTEXT = 0;       // 1: long captions wrap
var PRESERVESTATE = 0;  // 1: open folders are remembered while the window lives
var HIGHLIGHT = 0;      // 1: the entry clicked last is highlighted
var ICONPATH = '';      // folder of the icons
var foldersTree = null;

function TreeFolder(caption, link) {
  this.caption = caption;
  this.link = link;
  this.children = [];
  this.isFolder = true;
}

function TreeLeaf(target, caption, link) {
  this.target = target;
  this.caption = caption;
  this.link = link;
  this.isFolder = false;
}

function gFld(caption, link) { return new TreeFolder(caption, link); }
function gLnk(target, caption, link) { return new TreeLeaf(target, caption, link); }
function insFld(parent, folder) { parent.children.push(folder); return folder; }
function insDoc(parent, leaf) { parent.children.push(leaf); return leaf; }

var mrvTree = {
  rows: [],         // every entry's row, in tree order
  highlighted: null,
  stateKey: 'mrvTreeOpen:' + location.pathname,

  icon: function (name) {
    var path = String(ICONPATH || '');
    if (path !== '' && path.charAt(path.length - 1) !== '/') path += '/';
    return path + name;
  },

  frameOf: function (target) {
    if (target === 'B') return '_blank';
    if (target === 'T') return '_top';
    if (target === 'S') return '_self';
    var top = window.parent;
    return top !== window && top.frames && top.frames.basefrm ? 'basefrm' : '_self';
  },

  image: function (name, cls) {
    var img = document.createElement('img');
    img.onerror = function () {
      if (window.mrvNote) window.mrvNote('missing file: ' + this.src);
    };
    img.src = this.icon(name);
    img.alt = '';
    if (cls) img.className = cls;
    return img;
  },

  caption: function (entry) {
    var span = document.createElement('span');
    span.className = 'mrvCaption';
    if (entry.link && (USETEXTLINKS || !entry.isFolder)) {
      var a = document.createElement('a');
      a.href = entry.link;
      a.target = this.frameOf(entry.isFolder ? 'R' : entry.target);
      a.innerHTML = entry.caption;
      span.appendChild(a);
    } else {
      span.innerHTML = entry.caption;
    }
    return span;
  },

  // One entry: a row (toggle, icon, caption) and, for a folder, its children.
  build: function (entry, depth) {
    var node = document.createElement('div');
    var row = document.createElement('div');
    node.className = 'mrvNode';
    row.className = 'mrvRow';
    node.appendChild(row);
    this.rows.push(row);
    var self = this;
    if (entry.isFolder) {
      node.className += ' mrvFolder';
      node.setAttribute('data-mrv-id', String(this.rows.length - 1));
      var toggle = this.image('tree_plus.svg', 'mrvToggle');
      var icon = this.image('tree_folder_closed.svg', 'mrvToggle');
      if (depth > 0) row.appendChild(toggle);
      row.appendChild(icon);
      var children = document.createElement('div');
      children.className = 'mrvChildren';
      for (var i = 0; i < entry.children.length; i++) {
        children.appendChild(this.build(entry.children[i], depth + 1));
      }
      node.appendChild(children);
      toggle.onclick = icon.onclick = function () { self.setOpen(node, !self.isOpen(node)); };
    } else {
      node.className += ' mrvLeaf';
      row.appendChild(this.spacer());
      row.appendChild(this.image('tree_doc.svg'));
    }
    var caption = this.caption(entry);
    row.appendChild(caption);
    caption.onclick = function () {
      if (entry.isFolder && !entry.link) {
        self.setOpen(node, !self.isOpen(node));
        return;
      }
      if (entry.isFolder) self.setOpen(node, true);
      self.highlight(row);
    };
    if (entry.isFolder && !entry.link) caption.style.cursor = 'pointer';
    return node;
  },

  spacer: function () {
    var span = document.createElement('span');
    span.className = 'mrvSpacer';
    return span;
  },

  isOpen: function (node) { return !/\bmrvClosed\b/.test(node.className); },

  setOpen: function (node, open) {
    node.className = node.className.replace(/\s*\bmrv(Open|Closed)\b/g, '') +
                     (open ? ' mrvOpen' : ' mrvClosed');
    node.lastChild.style.display = open ? '' : 'none';
    var row = node.firstChild;
    var images = row.getElementsByTagName('img');
    if (images.length >= 2) images[0].src = this.icon(open ? 'tree_minus.svg' : 'tree_plus.svg');
    images[images.length >= 2 ? 1 : 0].src =
        this.icon(open ? 'tree_folder_open.svg' : 'tree_folder_closed.svg');
    if (PRESERVESTATE) this.saveState();
  },

  highlight: function (row) {
    if (!HIGHLIGHT) return;
    if (this.highlighted) this.highlighted.className = 'mrvRow';
    row.className = 'mrvRow mrvHighlight';
    this.highlighted = row;
  },

  folders: function () {
    var all = document.getElementById('mrvTree').getElementsByTagName('div');
    var list = [];
    for (var i = 0; i < all.length; i++) {
      if (/\bmrvFolder\b/.test(all[i].className)) list.push(all[i]);
    }
    return list;
  },

  saveState: function () {
    if (!mrvBrowser.storage) return;
    var open = [];
    var folders = this.folders();
    for (var i = 0; i < folders.length; i++) {
      if (this.isOpen(folders[i])) open.push(folders[i].getAttribute('data-mrv-id'));
    }
    try { sessionStorage.setItem(this.stateKey, open.join(',')); } catch (e) { /* full */ }
  },

  savedState: function () {
    if (!PRESERVESTATE || !mrvBrowser.storage) return null;
    var text = null;
    try { text = sessionStorage.getItem(this.stateKey); } catch (e) { return null; }
    return text === null ? null : ',' + text + ',';
  },

  loadStyle: function () {
    var scripts = document.getElementsByTagName('script');
    for (var i = 0; i < scripts.length; i++) {
      var src = scripts[i].getAttribute('src') || '';
      if (/ftiens4\.js$/.test(src)) {
        var link = document.createElement('link');
        link.rel = 'stylesheet';
        link.href = src.replace(/ftiens4\.js$/, 'ftie4style.css');
        document.getElementsByTagName('head')[0].appendChild(link);
        return;
      }
    }
  },

  // Opens and closes every folder once and checks what shows: the page's own
  // test of the menu, run when the page is opened with "?selftest".
  selfTest: function () {
    var folders = this.folders();
    var ok = folders.length > 0;
    for (var i = 1; i < folders.length; i++) {
      var children = folders[i].lastChild;
      var was = this.isOpen(folders[i]);
      this.setOpen(folders[i], false);
      ok = ok && getComputedStyle(children).display === 'none';
      this.setOpen(folders[i], true);
      ok = ok && getComputedStyle(children).display !== 'none';
      this.setOpen(folders[i], was);
    }
    document.documentElement.setAttribute('data-mrv-selftest', ok ? 'ok' : 'failed');
  }
};

function initializeDocument() {
  if (!foldersTree) throw new Error('the tree script defines no foldersTree');
  mrvTree.loadStyle();
  var container = document.createElement('div');
  container.id = 'mrvTree';
  container.className = 'mrvTree' + (WRAPTEXT ? ' mrvWrap' : '');
  container.appendChild(mrvTree.build(foldersTree, 0));
  var here = document.currentScript;
  if (here && here.parentNode) {
    here.parentNode.insertBefore(container, here);
  } else {
    document.body.appendChild(container);
  }
  var saved = mrvTree.savedState();
  var folders = mrvTree.folders();
  var expand = /[?&]expand\b/.test(location.search);
  for (var i = 0; i < folders.length; i++) {
    var open = i === 0 || expand || (saved !== null
        ? saved.indexOf(',' + folders[i].getAttribute('data-mrv-id') + ',') >= 0
        : !!STARTALLOPEN);
    mrvTree.setOpen(folders[i], open);
  }
  document.documentElement.setAttribute('data-mrv-tree', String(mrvTree.rows.length));
  if (/[?&]selftest\b/.test(location.search)) mrvTree.selfTest();
}
