(vl-load-com)
(defun c:work (/ doc)
  (setq doc (vla-get-ActiveDocument (vlax-get-Acad-Object)))
  (vlax-for blk (vla-get-Blocks doc)
    (if (and (= (vla-get-IsXref blk) :vlax-false) (= (vla-get-IsLayout blk) :vlax-false))
      (vlax-for obj blk
        (if (vlax-write-enabled-p obj) (vla-put-Color obj acByLayer)))))
  (princ))
