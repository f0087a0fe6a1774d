/* Browser facts for the tree code of the result pages, and their error
   marker: any script error, or a script, image or style sheet that fails to
   load, is noted on the page's root element (attribute data-mrv-error) and
   shown in a red box, so that both a reader and an automatic check see it. */

var mrvBrowser = {
  agent: navigator.userAgent,
  dom: !!(document.getElementById && document.createElement),
  storage: (function () {
    try { return !!window.sessionStorage; } catch (e) { return false; }
  })()
};

(function () {
  var notes = [];

  function show() {
    if (!document.body || notes.length === 0) return;
    var box = document.getElementById('mrvError');
    if (!box) {
      box = document.createElement('div');
      box.id = 'mrvError';
      box.style.cssText = 'border:1px solid #c00;background:#fee;color:#900;' +
                          'font:8pt verdana,sans-serif;padding:3px;margin:2px 0';
      document.body.insertBefore(box, document.body.firstChild);
    }
    box.textContent = notes.join(' | ');
  }

  function note(text) {
    if (notes.indexOf(text) >= 0) return;
    notes.push(text);
    document.documentElement.setAttribute('data-mrv-error', notes.join(' | '));
    show();
  }
  // For elements whose errors don't reach the window (made before they join the page).
  window.mrvNote = note;

  // Capturing on window sees both script errors and elements that fail to load.
  window.addEventListener('error', function (event) {
    var element = event.target;
    if (element && element !== window && element.nodeType === 1) {
      note('missing file: ' + (element.src || element.href || element.tagName));
    } else {
      note('script error: ' + event.message + ' (' + event.filename + ':' + event.lineno + ')');
    }
  }, true);
  document.addEventListener('DOMContentLoaded', show);
})();
